// The installation's disk is full at one step after another. At every step the previous release stays as it was, and
// the next run with enough space succeeds.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/full_disk_fixture.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr const char* kNotWritable =
    "The game folder is not writable. Move the portable game outside Program Files or run as administrator.";
constexpr const char* kNotCopied = "Unable to stage the local update package.";
constexpr const char* kNotUnpacked = "The Windows archive tool rejected the update package.";

// After an incremental update that cannot be staged, the updater tries the complete package.
TEST_F(FullDiskTest, OutOfSpaceInAnIncrementalUpdate) {
    EXPECT_THAT(outcomesWithBytes(Source::incremental, 100'000),
                ElementsAre(Pair(0, ""), Pair(16, kNotCopied), Pair(22, kNotUnpacked)));
    expectRelease42();
}

TEST_F(FullDiskTest, OutOfSpaceInAnUpdateFromTheCompletePackage) {
    EXPECT_THAT(outcomesWithBytes(Source::completePackage, 100'000),
                ElementsAre(Pair(0, ""), Pair(16, kNotCopied), Pair(22, kNotUnpacked)));
    expectRelease42();
}

// Moving files takes no space, but the folders that they move to are new.
class NoMoreFilesTest : public FullDiskTest {
protected:
    NoMoreFilesTest() : FullDiskTest(smallUpdate()) {}
};

TEST_F(NoMoreFilesTest, StopEveryStepThatMakesOne) {
    EXPECT_THAT(outcomesWithFiles(Source::incremental, 1),
                ElementsAre(Pair(0, ""), Pair(14, kNotWritable), Pair(16, kNotCopied), Pair(22, kNotUnpacked),
                            Pair(27, ""), Pair(27, "Unable to prepare an updated installation folder."),
                            Pair(27, "Unable to prepare the update backup.")));
    expectRelease42();
}

}  // namespace
}  // namespace vorthmere::end_to_end
