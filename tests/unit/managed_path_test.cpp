#include "update/managed_path.h"

#include <gtest/gtest.h>

#include <string>

namespace vorthmere::update {
namespace {

TEST(ManagedPath, AcceptsExactlyTheLongestAllowedPath) {
    EXPECT_TRUE(isSafeRelativePath(std::string(240, 'a'), false));
    EXPECT_FALSE(isSafeRelativePath(std::string(241, 'a'), false));
    EXPECT_FALSE(isSafeRelativePath(std::string(240, 'a') + "/", true));
}

}  // namespace
}  // namespace vorthmere::update
