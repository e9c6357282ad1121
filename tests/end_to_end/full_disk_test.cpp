// The disk of the installation is full at one step after the other. Whatever step that is, the previous release stays
// as it was, and with enough space the next run succeeds.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/full_disk_test.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;

TEST_F(FullDiskTest, OutOfSpaceInAnIncrementalUpdate) {
    // Staging, then the copy of the package, then unpacking run out of space.
    EXPECT_THAT(codesWithBytes(Source::incremental, 100'000), ElementsAre(0, 16, 22));
    expectRelease42();
}

TEST_F(FullDiskTest, OutOfSpaceInAnUpdateFromTheCompletePackage) {
    EXPECT_THAT(codesWithBytes(Source::completePackage, 100'000), ElementsAre(0, 16, 22));
    expectRelease42();
}

TEST_F(FullDiskTest, OutOfFilesInAnIncrementalUpdate) {
    // No work folder, no package, not all files unpacked, no backup folder or not all folders in it.
    EXPECT_THAT(codesWithFiles(Source::incremental, 1), ElementsAre(0, 14, 16, 22, 27));
    expectRelease42();
}

}  // namespace
}  // namespace vorthmere::end_to_end
