// The disk of the installation is full while a release is downloaded.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/channel_sentences.h"
#include "tests/end_to_end/support/full_disk_fixture.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr const char* kNotUnpacked = "The Windows archive tool rejected the update package.";

class FullDiskDownloadTest : public FullDiskTest {
protected:
    PlainChannel channel{scenario.release.folder};
};

TEST_F(FullDiskDownloadTest, OutOfSpaceInAnIncrementalUpdate) {
    EXPECT_THAT(outcomesWithBytes(Source::channel, 200'000),
                ElementsAre(Pair(0, ""), Pair(15, kNotStored), Pair(22, kNotUnpacked)));
    expectRelease42();
}

TEST_F(FullDiskDownloadTest, OutOfSpaceInAnUpdateFromTheCompletePackage) {
    std::filesystem::remove(scenario.release.inventory);
    EXPECT_THAT(outcomesWithBytes(Source::channel, 200'000),
                ElementsAre(Pair(0, ""), Pair(15, kNotStored), Pair(22, kNotUnpacked)));
    expectRelease42();
}

}  // namespace
}  // namespace vorthmere::end_to_end
