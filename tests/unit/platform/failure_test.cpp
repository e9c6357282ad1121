#include "platform/failure.h"

#include <gtest/gtest.h>

namespace vorthmere::update {
namespace {

TEST(FailureTest, OnlyTheErrorsForAPathThatLeadsToNothingMeanThatNothingIsThere) {
    for (const std::uint32_t number : {2u, 3u, 123u, 267u})
        EXPECT_TRUE(isNotFound(failureOf(number))) << number;
}

TEST(FailureTest, AShareOrADriveThatWentAwayDoesNotMeanThatNothingIsThere) {
    for (const std::uint32_t number : {5u, 21u, 32u, 53u, 55u, 59u, 64u, 67u, 121u, 1006u, 1117u, 1167u, 1231u, 1921u})
        EXPECT_FALSE(isNotFound(failureOf(number))) << number;
    EXPECT_FALSE(isNotFound({}));
    EXPECT_FALSE(isNotFound(std::make_error_code(std::errc::no_such_file_or_directory)));
}

}  // namespace
}  // namespace vorthmere::update
