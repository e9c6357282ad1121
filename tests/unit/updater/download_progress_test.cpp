#include "updater/download_progress.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/recorded_progress.h"

namespace vorthmere::update {
namespace {

using testing::RecordedProgress;

/// The step that one count of bytes is reported as.
RecordedProgress::Step reported(std::uint64_t packageSize, std::uint64_t received, std::uint64_t expected) {
    Manifest manifest;
    manifest.size = packageSize;
    RecordedProgress recorded;
    const ProgressCallback progress = recorded.callback();
    downloadProgress(manifest, progress)(received, expected);
    return recorded.steps().at(0);
}

RecordedProgress::Step step(unsigned downloaded, std::uint32_t percent) {
    return {L"Downloading update... " + std::to_wstring(downloaded) + L"%", percent};
}

TEST(DownloadProgress, MovesFrom12To65PercentWithTheShareOfTheExpectedBytes) {
    EXPECT_EQ(reported(9, 0, 1000), step(0, 12));
    EXPECT_EQ(reported(9, 10, 1000), step(1, 12));
    EXPECT_EQ(reported(9, 20, 1000), step(2, 13));
    EXPECT_EQ(reported(9, 420, 1000), step(42, 34));
    EXPECT_EQ(reported(9, 500, 1000), step(50, 38));
    EXPECT_EQ(reported(9, 990, 1000), step(99, 64));
    EXPECT_EQ(reported(9, 1000, 1000), step(100, 65));
}

TEST(DownloadProgress, TruncatesTheShare) {
    EXPECT_EQ(reported(9, 1, 3), step(33, 29));
    EXPECT_EQ(reported(9, 2, 3), step(66, 46));
    EXPECT_EQ(reported(9, 999, 1000), step(99, 64));
}

TEST(DownloadProgress, WithoutAnExpectedLengthThePackagesSizeCounts) {
    EXPECT_EQ(reported(200, 50, 0), step(25, 25));
    EXPECT_EQ(reported(200, 200, 0), step(100, 65));
}

TEST(DownloadProgress, WithoutAnyLengthItStaysAtTheBeginning) {
    EXPECT_EQ(reported(0, 0, 0), step(0, 12));
    EXPECT_EQ(reported(0, 536870912, 0), step(0, 12));
}

TEST(DownloadProgress, MoreThanTheExpectedBytesAreStillAHundredPercent) {
    EXPECT_EQ(reported(9, 1001, 1000), step(100, 65));
    EXPECT_EQ(reported(100, 536870912, 0), step(100, 65));
    EXPECT_EQ(reported(9, 5000000000, 1), step(100, 65));
}

TEST(DownloadProgress, CountsAboveFourGigabytesAreExact) {
    EXPECT_EQ(reported(9, 5000000000, 10000000000), step(50, 38));
}

TEST(DownloadProgress, AnEmptyCallbackIsSkipped) {
    const ProgressCallback none;
    const Manifest manifest;
    EXPECT_NO_THROW(downloadProgress(manifest, none)(1, 2));
}

}  // namespace
}  // namespace vorthmere::update
