#include "transfer/fetch_progress.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/recorded_progress.h"

namespace vorthmere::update {
namespace {

using testing::RecordedProgress;

using Step = RecordedProgress::Step;

class FetchProgressTest : public ::testing::Test {
protected:
    Step file(std::uint64_t bytes, std::uint64_t number, std::uint64_t bytesDone) {
        FetchProgress(7, bytes, progress).reportFile(number, bytesDone);
        return recorded.steps().back();
    }
    Step bytes(std::uint64_t bytes, std::uint64_t bytesDone) {
        FetchProgress(7, bytes, progress).reportBytes(bytesDone);
        return recorded.steps().back();
    }

    RecordedProgress recorded;
    const ProgressCallback progress = recorded.callback();
};

TEST_F(FetchProgressTest, AFileIsNumberedAndStandsWhereTheBytesBeforeItEnd) {
    EXPECT_EQ(file(1000, 1, 0), Step(L"Downloading changed files (1 of 7)...", 12));
    EXPECT_EQ(file(1000, 3, 500), Step(L"Downloading changed files (3 of 7)...", 44));
    EXPECT_EQ(file(1000, 7, 999), Step(L"Downloading changed files (7 of 7)...", 76));
    EXPECT_EQ(file(1000, 7, 1000), Step(L"Downloading changed files (7 of 7)...", 77));
}

TEST_F(FetchProgressTest, AFileWithoutAnyByteToFetchStandsAtTheBeginning) {
    EXPECT_EQ(file(0, 7, 0), Step(L"Downloading changed files (7 of 7)...", 12));
}

TEST_F(FetchProgressTest, BytesMoveFrom12To77PercentTruncatedTwice) {
    EXPECT_EQ(bytes(1000, 0), Step(L"Downloading changed files... 0%", 12));
    EXPECT_EQ(bytes(1000, 19), Step(L"Downloading changed files... 1%", 12));
    EXPECT_EQ(bytes(1000, 20), Step(L"Downloading changed files... 2%", 13));
    EXPECT_EQ(bytes(1000, 505), Step(L"Downloading changed files... 50%", 44));
    EXPECT_EQ(bytes(1000, 999), Step(L"Downloading changed files... 99%", 76));
    EXPECT_EQ(bytes(1000, 1000), Step(L"Downloading changed files... 100%", 77));
}

TEST_F(FetchProgressTest, BytesOfEmptyFilesAreAHundredPercent) {
    EXPECT_EQ(bytes(0, 0), Step(L"Downloading changed files... 100%", 77));
}

TEST_F(FetchProgressTest, CountsAboveFourGigabytesAreExact) {
    EXPECT_EQ(bytes(10000000000, 5000000000), Step(L"Downloading changed files... 50%", 44));
    EXPECT_EQ(file(10000000000, 2, 5000000000), Step(L"Downloading changed files (2 of 7)...", 44));
}

}  // namespace
}  // namespace vorthmere::update
