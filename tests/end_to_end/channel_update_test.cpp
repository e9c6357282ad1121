// Whole runs of the real program against a correct server: what it asks for, and how the runs end.

#include <gmock/gmock.h>

#include <sstream>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/support/report_fields.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using update::testing::reports;

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
    EXPECT_THAT(transferReport(),
                reports({{"downloaded", std::to_string(downloaded)}, {"bytes", std::to_string(bytes)}}));
}

TEST_F(ChannelUpdateTest, WithoutAnInventoryTheCompletePackageIsAskedFor) {
    std::filesystem::remove(scenario.release.inventory);
    EXPECT_EQ(runUpdater(Source::channel), 0);
    expectRelease42();
    EXPECT_THAT(channel.requests(), ElementsAre(requestFor(manifest), requestFor(inventory), requestFor(package)));
    EXPECT_THAT(transferReport(), reports({{"mode", "full"}}));
}

TEST(ChannelHandles, HundredsOfDownloadsLeaveNoHandleOpen) {
    update::testing::TemporaryFolder folder;
    writeFile(folder / "good", "content");
    writeFile(folder / "large", std::string(1001, 'l'));
    const PlainChannel channel(folder.path());
    ChildProcess probe(
        wineCommand(probeProgram(), {"download-loop", "100", windowsPath(folder / "target"), channelUrl("good"),
                                     channelUrl("large"), channelUrl("missing"), "https://127.0.0.1:1/refused"}));
    const auto fieldsOf = [](const std::string& line) {
        std::vector<std::string> fields;
        std::istringstream text(line);
        for (std::string field; std::getline(text, field, '\t');)
            fields.push_back(field);
        return fields;
    };
    const std::vector<std::string> before = fieldsOf(probe.readLine(Milliseconds(60'000)));
    const std::vector<std::string> after = fieldsOf(probe.readLine(Milliseconds(120'000)));
    ASSERT_EQ(before.size(), 4U);
    ASSERT_EQ(after.size(), 4U);
    EXPECT_EQ(before[1], after[1]) << "handles of the process";
    EXPECT_EQ(before[2], after[2]) << "handles of WinHTTP";
    EXPECT_EQ(after[3], "105") << "successful downloads";
}

}  // namespace
}  // namespace vorthmere::end_to_end
