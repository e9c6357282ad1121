#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/support/report_fields.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

class InstallationFolderTest : public EndToEndTest {};

TEST_F(InstallationFolderTest, MayBeRelative) {
    setCurrentFolder(scenario.root / "games");
    UpdaterCommand command = this->command(Source::completePackage);
    command.install = "Kelvane game";
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
}

TEST_F(InstallationFolderTest, MayBeTheCurrentFolderAndTheFilesRelativeToIt) {
    setCurrentFolder(scenario.installation);
    UpdaterCommand command = this->command(Source::incremental);
    command.install = ".";
    const std::string channel = "..\\..\\channel\\";
    command.manifestFile = channel + "KVN-alpha.manifest";
    command.packageFile = channel + "KVN-release-42.zip";
    command.inventoryFile = channel + "KVN-release-42.zip.files";
    command.objectDirectory = "..\\..\\channel";
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
    EXPECT_THAT(transferReport(), update::testing::reports({{"mode", "incremental"}}));
}

TEST_F(InstallationFolderTest, MayEndInABackslash) {
    UpdaterCommand command = this->command(Source::completePackage);
    command.install += "\\";
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
}

TEST_F(InstallationFolderTest, MayBeWrittenWithSlashesAndDots) {
    UpdaterCommand command = this->command(Source::incremental);
    command.install = "Z:" + (scenario.root / "channel" / ".." / "games" / "." / "Kelvane game").string() + "//";
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
}

TEST_F(InstallationFolderTest, MayBeWrittenInOtherLetterCase) {
    UpdaterCommand command = this->command(Source::incremental);
    command.install = windowsPath(scenario.root / "GAMES" / "kelvane GAME");
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
}

class AccentedFolderTest : public EndToEndTest {
protected:
    AccentedFolderTest() : EndToEndTest({.installationName = "Spiele f\xC3\xBCr J\xC3\xB6rg"}) {}
};

TEST_F(AccentedFolderTest, IsUpdatedIncrementally) {
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

TEST_F(AccentedFolderTest, IsUpdatedFromTheCompletePackage) {
    EXPECT_EQ(runUpdater(Source::completePackage), 0);
    expectRelease42();
}

class ForeignScriptFolderTest : public EndToEndTest {
protected:
    ForeignScriptFolderTest() : EndToEndTest({.installationName = "\xE6\x98\x9F\xE3\x81\xAE game"}) {}
};

TEST_F(ForeignScriptFolderTest, IsUpdatedIncrementally) {
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

// The archive tool can only handle names in the system's code page.
TEST_F(ForeignScriptFolderTest, IsLeftAloneWhenTheArchiveToolCannotNameIt) {
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    EXPECT_EQ(runUpdater(Source::completePackage), 21);
    expectInstallation(before);
}

class LeftoverTest : public EndToEndTest {};

TEST_F(LeftoverTest, AnEarlierRunLeavesNothingBehindAfterTheNext) {
    ASSERT_EQ(runUpdater(Source::completePackage), 0);
    // The read-only files of release 41 lie in the backup now.
    ASSERT_TRUE(isReadOnly(scenario.workFolder / "backup" / "docs" / "manual.txt"));
    writeFile(scenario.workFolder / "package.zip", "unfinished");
    writeFile(scenario.workFolder / "staging" / "data" / "unfinished.dat", "unfinished");
    setReadOnly(scenario.workFolder / "staging" / "data" / "unfinished.dat");
    writeFile(scenario.workFolder / "unknown folder" / "deep" / "er" / "file", "unknown");
    ReleaseFiles next = sampleRelease42();
    next["Readme.txt"] = {"Kelvane, release 43.\n"};
    next = withReleaseMetadata(next, 43);
    scenario.release = publish(scenario.root / "channel", next, 43);
    UpdaterCommand command = this->command(Source::incremental);
    command.current = "42";
    EXPECT_EQ(runUpdater(command), 0);
    expectInstalled(next);
    EXPECT_THAT(workFolderContent(), testing::ElementsAre("backup", "inventory.txt", "transfer.txt"));
    EXPECT_EQ(readFile(scenario.workFolder / "backup" / "Readme.txt"), sampleRelease42().at("Readme.txt").content);
    EXPECT_FALSE(fs::exists(scenario.workFolder / "backup" / "Migration.txt"));
}

TEST_F(LeftoverTest, AFileAsWorkFolderIsRemoved) {
    writeFile(scenario.workFolder, "a file");
    setReadOnly(scenario.workFolder);
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

TEST_F(LeftoverTest, ReadOnlyFilesAreReplacedAndTheOldOnesKeepTheirAttributeInTheBackup) {
    ASSERT_TRUE(isReadOnly(scenario.installation / "docs" / "manual.txt"));
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
    EXPECT_TRUE(isReadOnly(scenario.workFolder / "backup" / "docs" / "manual.txt"));
    EXPECT_TRUE(isReadOnly(scenario.installation / "docs" / "licence.txt")) << "a reused file keeps its attribute";
}

}  // namespace
}  // namespace vorthmere::end_to_end
