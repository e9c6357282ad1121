#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/support/report_fields.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

/// Links in every place where the updater works, which lead to content outside the installation. EndToEndTest checks
/// that this content survives. Under Wine a link can be told from a folder, but cannot be removed.
class LinkTest : public EndToEndTest {
protected:
    LinkTest() {
        writeFile(outside / "precious.txt", "outside");
        writeFile(outside / "wood.pak", "outside");
    }

    /// Lets the updater stage its first file, and then calls `disturb` with the staging folder.
    int runUpdaterAndDisturbStaging(const std::function<void(const fs::path& staging)>& disturb) {
        FolderWatch watch;
        watch.add(scenario.installation, IN_CREATE);
        ChildProcess updater = startUpdater(command(Source::incremental));
        EXPECT_TRUE(watch.next(Milliseconds(60'000)));
        const fs::path staging = scenario.workFolder / "staging";
        while (!fs::exists(staging / sampleRelease42().begin()->first) && !updater.hasEnded(Milliseconds(1))) {
        }
        disturb(staging);
        const ProcessEnd end = updater.wait(Milliseconds(60'000));
        finishRun();
        return end.exitCode;
    }

    const fs::path outside = scenario.root / "elsewhere";
};

TEST_F(LinkTest, ALinkInsideTheWorkFolderIsNotEntered) {
    fs::create_directories(scenario.workFolder / "backup" / "data");
    fs::create_directory_symlink(outside, scenario.workFolder / "backup" / "data" / "link");
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    EXPECT_EQ(runUpdater(Source::incremental), 14);
    expectInstallation(before);
    fs::remove(scenario.workFolder / "backup" / "data" / "link");
    EXPECT_EQ(runUpdater(Source::incremental), 0);
}

TEST_F(LinkTest, ALinkAsBackupOrStagingOfAnEarlierRunIsNotEntered) {
    for (const char* name : {"backup", "staging"}) {
        SCOPED_TRACE(name);
        fs::create_directories(scenario.workFolder);
        fs::create_directory_symlink(outside, scenario.workFolder / name);
        EXPECT_EQ(runUpdater(Source::completePackage), 14);
        fs::remove_all(scenario.workFolder);
    }
}

TEST_F(LinkTest, ALinkInStagingEndsTheRunBeforeAnythingIsInstalled) {
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    EXPECT_EQ(runUpdaterAndDisturbStaging(
                  [this](const fs::path& staging) { fs::create_directory_symlink(outside, staging / "A link"); }),
              24);
    expectInstallation(before);
    // Nor does the next run enter it.
    EXPECT_EQ(runUpdater(Source::incremental), 14);
    expectInstallation(before);
}

TEST_F(LinkTest, AManagedFolderThatIsALinkEndsTheRunAndIsKept) {
    for (const char* folder : {"data", "data/textures", "docs", "config"}) {
        SCOPED_TRACE(folder);
        const fs::path aside = scenario.root / "aside";
        fs::rename(scenario.installation / folder, aside);
        fs::create_directory_symlink(outside, scenario.installation / folder);
        const TreeSnapshot before = scenario.takeInstallationSnapshot();
        EXPECT_EQ(runUpdater(Source::incremental), 27);
        EXPECT_THAT(transferReport(), update::testing::reports({{"mode", "full"}}));
        expectInstallation(before);
        fs::remove(scenario.installation / folder);
        fs::rename(aside, scenario.installation / folder);
    }
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

TEST_F(LinkTest, ALinkOnThePathOfANewFileEndsTheRun) {
    fs::remove_all(scenario.installation / "data" / "new area");
    fs::create_directory_symlink(outside, scenario.installation / "data" / "new area");
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    EXPECT_EQ(runUpdater(Source::completePackage), 27);
    expectInstallation(before);
}

TEST_F(LinkTest, ALinkThatAppearsWhileTheGameIsOpenEndsTheRun) {
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    const fs::path folder = scenario.installation / "data" / "textures";
    EXPECT_EQ(runUpdater(command(Source::incremental),
                         [&] {
                             fs::rename(folder, scenario.workFolder / "aside");
                             fs::create_directory_symlink(outside, folder);
                         }),
              27);
    fs::remove(folder);
    fs::rename(scenario.workFolder / "aside", folder);
    expectInstallation(before);
}

TEST_F(LinkTest, AnInstallationBehindALinkIsUpdatedWhereItReallyIs) {
    fs::create_directory_symlink(scenario.installation, scenario.root / "shortcut");
    UpdaterCommand command = this->command(Source::incremental);
    command.install = windowsPath(scenario.root / "shortcut");
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
    EXPECT_TRUE(fs::is_symlink(scenario.root / "shortcut"));
}

}  // namespace
}  // namespace vorthmere::end_to_end
