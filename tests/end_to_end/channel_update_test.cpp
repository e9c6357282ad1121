// Whole runs of the real program against a well-kept server: what is asked for, and what comes of it.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_test.h"
#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/sample_release.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class ChannelUpdateTest : public EndToEndTest {
protected:
    const std::string manifest{update::kManifestName};
    const std::string package = scenario.release.package.filename();
    const std::string inventory = scenario.release.inventory.filename();
    PlainChannel channel{scenario.release.folder};
};

TEST_F(ChannelUpdateTest, ACurrentInstallationAsksForTheManifestOnly) {
    UpdaterCommand command = this->command(Source::channel);
    command.current = "42";
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    EXPECT_EQ(runUpdater(command), 0);
    EXPECT_EQ(describeDifferences(before, scenario.takeInstallationSnapshot()), "");
    EXPECT_FALSE(exists(scenario.workFolder));
    EXPECT_THAT(channel.requests(), ElementsAre(requestFor(manifest)));
}

TEST_F(ChannelUpdateTest, ChangedFilesAreAskedForInTheOrderOfTheInventory) {
    std::vector<ChannelRequest> expected{requestFor(manifest), requestFor(inventory)};
    std::size_t bytes = 0;
    for (const auto& [path, file] : sampleRelease42()) {
        const auto installed = sampleRelease41().find(path);
        if (installed != sampleRelease41().end() && installed->second.content == file.content) continue;
        expected.push_back(requestFor(objectName(file.content)));
        bytes += file.content.size();
    }
    EXPECT_EQ(runUpdater(Source::channel), 0);
    expectRelease42();
    EXPECT_THAT(channel.requests(), ElementsAreArray(expected));
    const std::size_t downloaded = expected.size() - 2;
    EXPECT_EQ(transferReport(), "mode=incremental\r\nreused=" + std::to_string(sampleRelease42().size() - downloaded) +
                                    "\r\ndownloaded=" + std::to_string(downloaded) +
                                    "\r\nbytes=" + std::to_string(bytes) + "\r\n");
}

TEST_F(ChannelUpdateTest, WithoutAnInventoryTheCompletePackageIsAskedFor) {
    std::filesystem::remove(scenario.release.inventory);
    EXPECT_EQ(runUpdater(Source::channel), 0);
    expectRelease42();
    EXPECT_THAT(channel.requests(), ElementsAre(requestFor(manifest), requestFor(inventory), requestFor(package)));
    EXPECT_EQ(transferReport(), "mode=full\r\nbytes=" + scenario.release.manifestText.size + "\r\n");
}

}  // namespace
}  // namespace vorthmere::end_to_end
