#include <windows.h>
// windows.h has to come first.
#include <sddl.h>

#include <gmock/gmock.h>

#include "tests/support/child_process.h"
#include "tests/support/held_file.h"
#include "tests/support/launched_game.h"
#include "tests/support/update_run_fixture.h"

namespace vorthmere::update {
namespace {

using testing::ChildProcess;
using testing::childProgram;
using testing::FileTree;
using testing::HeldFile;
using testing::LaunchedGame;
using testing::NamedEvent;
using testing::readTree;
using testing::sampleReleaseFiles;
using testing::withManagedFileList;
using testing::writeFile;

constexpr const wchar_t* kWaiting = L"Waiting for Kelvane to close...";
constexpr const wchar_t* kInstalling = L"Installing the new release...";
constexpr const wchar_t* kLaunching = L"Launching Kelvane...";
constexpr const wchar_t* kDone = L"Update complete. Welcome back, pilot.";

class UpdateRunHandOverTest : public testing::UpdateRunTest {
protected:
    /// Publishes a release whose game can be started.
    void publishPlayableRelease() {
        FileTree files = sampleReleaseFiles(42);
        files["Vorthmere.exe"] = testing::childProgramBytes();
        publish(files);
    }
};

TEST_F(UpdateRunHandOverTest, Code25AnInstalledListThatIsEmptyInvalidOrLockedBeforeTheGameIsWaitedFor) {
    publishSampleRelease();
    const std::pair<std::string, std::wstring> faults[] = {
        {"", L"An update metadata file has an invalid size."},
        {std::string(131073, '\n'), L"An update metadata file has an invalid size."},
        {"Vorthmere.exe\n", L"Managed-file list is missing a required runtime."},
        {"../outside\n", L"Managed-file list contains an unsafe or duplicate path."}};
    for (const auto& [list, sentence] : faults) {
        writeFile(install / "KVN_MANAGED_FILES.txt", list);
        EXPECT_EQ(run(), 25);
        EXPECT_EQ(error, sentence);
        EXPECT_EQ(progress.lastText(), L"Unpacking updated game files...");
    }
    writeFile(install / "KVN_MANAGED_FILES.txt", oldFiles.at("KVN_MANAGED_FILES.txt"));
    {
        const HeldFile held(install / "KVN_MANAGED_FILES.txt");
        EXPECT_EQ(run(), 25);
        EXPECT_EQ(error, L"Unable to read update metadata.");
    }
    EXPECT_EQ(installedFiles(), oldFiles);
}

TEST_F(UpdateRunHandOverTest, ARunningGameIsWaitedForBeforeAnythingIsInstalled) {
    publishSampleRelease();
    const NamedEvent mayEnd;
    const ChildProcess game(childProgram(), {L"wait", mayEnd.name()});
    arguments.parentProcessId = game.id();
    progress.at(kWaiting, [&] {
        EXPECT_FALSE(game.hasEnded());
        EXPECT_EQ(installedFiles(), oldFiles);
        mayEnd.set();
    });
    bool seen = false;
    progress.at(kInstalling, [&] {
        seen = true;
        EXPECT_TRUE(game.hasEnded());
    });
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(seen);
    EXPECT_EQ(installedFiles(), newFiles);
}

TEST_F(UpdateRunHandOverTest, AGameThatHasEndedOrNeverRanIsNotWaitedFor) {
    publishSampleRelease();
    const ChildProcess game(childProgram(), {L"print", L"0"});
    game.waitForEnd();
    arguments.parentProcessId = game.id();
    EXPECT_EQ(run(), 0);

    // The numbers that Windows gives to processes are far smaller.
    arguments.parentProcessId = 0xFFFFFFF0;
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(progress.lastText(), kDone);
}

TEST_F(UpdateRunHandOverTest, WithoutAParentThereIsNoWaitThoughTheStepIsReported) {
    publishSampleRelease();
    arguments.parentProcessId = 0;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(progress.steps(), ::testing::Contains(testing::RecordedProgress::Step(kWaiting, 88)));
    EXPECT_EQ(installedFiles(), newFiles);
}

TEST_F(UpdateRunHandOverTest, Code26AProcessThatMayNotBeOpenedCannotBeWaitedFor) {
    publishSampleRelease();
    // Owned by the system, closed to everybody.
    SECURITY_ATTRIBUTES security{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(L"O:SYG:SYD:P(D;;0x1fffff;;;WD)", SDDL_REVISION_1,
                                                                     &security.lpSecurityDescriptor, nullptr));
    const NamedEvent mayEnd;
    const ChildProcess game(childProgram(), {L"wait", mayEnd.name()}, &security);
    LocalFree(security.lpSecurityDescriptor);
    arguments.parentProcessId = game.id();
    // The next step would fail with code 27.
    progress.at(kWaiting, [&] { writeFile(work / L"backup", "in the way"); });
    expectFailure(26, L"Unable to wait for the running game to close.");
    EXPECT_EQ(progress.lastText(), kWaiting);
}

TEST_F(UpdateRunHandOverTest, Code27ABackupFolderThatCannotBeCreatedHasNoSentence) {
    publishSampleRelease();
    progress.at(kWaiting, [&] { writeFile(work / L"backup", "a file where the folder is needed"); });
    expectFailure(27, L"");
    EXPECT_EQ(progress.lastText(), kInstalling);
}

TEST_F(UpdateRunHandOverTest, ABackupFolderThatIsThereIsNoFailure) {
    publishSampleRelease();
    progress.at(kWaiting, [&] { std::filesystem::create_directory(work / L"backup"); });
    EXPECT_EQ(run(), 0);
}

TEST_F(UpdateRunHandOverTest, Code27AFileInUseLeavesThePreviousReleaseInPlace) {
    publishSampleRelease();
    for (const auto& [path, content] : oldFiles) {
        if (path == "KVN_MANAGED_FILES.txt") continue;
        {
            const HeldFile held(install / path);
            EXPECT_EQ(run(), 27) << path;
        }
        EXPECT_EQ(error, L"Unable to back up the current installation.") << path;
        EXPECT_EQ(progress.lastText(), kInstalling);
        EXPECT_EQ(installedFiles(), oldFiles) << path;
    }
}

TEST_F(UpdateRunHandOverTest, Code27AStagedFileInUseLeavesThePreviousReleaseInPlace) {
    publishSampleRelease();
    std::unique_ptr<HeldFile> held;
    progress.at(kInstalling, [&] { held = std::make_unique<HeldFile>(work / L"staging" / L"kvn_release.txt"); });
    expectFailure(27, L"Unable to install an updated game file.");
}

TEST_F(UpdateRunHandOverTest, Code27AFolderAtAManagedPath) {
    FileTree files = sampleReleaseFiles(42);
    files["saves"] = "a new file of this name";
    publish(withManagedFileList(files));
    expectFailure(27, L"A managed installation path is not a regular file.");
}

TEST_F(UpdateRunHandOverTest, TheNewGameIsLaunchedBehindTheInstallationUnlessForbidden) {
    publishPlayableRelease();
    EXPECT_EQ(run(), 0);
    EXPECT_FALSE(testing::gameWasLaunched(install));

    arguments.noRelaunch = false;
    progress.at(kLaunching, [&] { EXPECT_FALSE(testing::gameWasLaunched(install)); });
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(progress.lastText(), kDone);
    const LaunchedGame game(install);
    EXPECT_EQ(game.fact("current folder"), install.string());
    EXPECT_EQ(installedFiles(), newFiles);
}

TEST_F(UpdateRunHandOverTest, Code28AGameThatCannotBeLaunchedPutsThePreviousReleaseBack) {
    FileTree files = sampleReleaseFiles(42);
    files["added.pak"] = "new in this release";
    publish(withManagedFileList(files));
    arguments.noRelaunch = false;
    expectFailure(28, L"Unable to relaunch Kelvane (error 193).");
    EXPECT_EQ(progress.lastText(), kLaunching);
    EXPECT_EQ(readTree(work / L"staging"), newFiles);
    EXPECT_EQ(readTree(work / L"backup"), FileTree{});
}

TEST_F(UpdateRunHandOverTest, Code28SaysSoWhenThePreviousReleaseCouldNotBeRestored) {
    publishSampleRelease();
    // A listed file that was missing is not in the backup, so the previous release is not complete.
    std::filesystem::remove(install / "kvn_release.txt");
    arguments.noRelaunch = false;
    EXPECT_EQ(run(), 28);
    EXPECT_EQ(error,
              L"Unable to relaunch Kelvane (error 193). The previous build also could not be restored automatically.");
    EXPECT_EQ(installedFiles(), newFiles);
}

TEST_F(UpdateRunHandOverTest, FilesOfThePreviousReleaseThatTheNewOneDropsAreGoneAndInTheBackup) {
    FileTree files = sampleReleaseFiles(42);
    files.erase("data/same in every release.pak");
    publish(withManagedFileList(files));
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(installedFiles(), newFiles);
    EXPECT_EQ(readTree(work / L"backup"), oldFiles);
}

TEST_F(UpdateRunHandOverTest, ASecondUpdateFollowsTheFirst) {
    publishSampleRelease();
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(readTree(work / L"backup"), newFiles);
    arguments.currentRelease = 42;
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(progress.lastText(), L"This installation is already current.");
}

}  // namespace
}  // namespace vorthmere::update
