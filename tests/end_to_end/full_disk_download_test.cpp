// The disk of the installation is full while a release is downloaded.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/full_disk_test.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;

class FullDiskDownloadTest : public FullDiskTest {
protected:
    PlainChannel channel{scenario.release.folder};
};

TEST_F(FullDiskDownloadTest, OutOfSpaceInAnIncrementalUpdate) {
    EXPECT_THAT(codesWithBytes(Source::channel, 200'000), ElementsAre(0, 15, 22));
    expectRelease42();
}

TEST_F(FullDiskDownloadTest, OutOfSpaceInAnUpdateFromTheCompletePackage) {
    std::filesystem::remove(scenario.release.inventory);
    EXPECT_THAT(codesWithBytes(Source::channel, 200'000), ElementsAre(0, 15, 22));
    expectRelease42();
}

}  // namespace
}  // namespace vorthmere::end_to_end
