#include "update/incremental_update.h"

#include <gtest/gtest.h>

namespace vorthmere::update {
namespace {

TEST(IncrementalUpdate, ChangedBytesThatEqualThePackageTakeThePackage) {
    Manifest manifest;
    manifest.size = 101;
    EXPECT_TRUE(updatesIncrementally(100, manifest));
    manifest.size = 100;
    EXPECT_FALSE(updatesIncrementally(100, manifest));
    manifest.size = 99;
    EXPECT_FALSE(updatesIncrementally(100, manifest));
}

}  // namespace
}  // namespace vorthmere::update
