#include "install/install_with_backup.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/earlier_error.h"
#include "tests/support/file_tree.h"
#include "tests/support/folder_link.h"
#include "tests/support/held_file.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::FileTree;
using testing::HeldFile;
using testing::Link;
using testing::LinkedFolder;
using testing::makeReadOnly;
using testing::readTree;
using testing::TemporaryFolder;
using testing::writeFile;
using testing::writeTree;

using Paths = std::vector<std::string>;

using testing::kEarlierError;
constexpr const wchar_t* kReparsePoint = L"The installation contains a reparse point in a managed path.";
constexpr const wchar_t* kNotRegular = L"A managed installation path is not a regular file.";
constexpr const wchar_t* kNoBackupFolder = L"Unable to prepare the update backup.";
constexpr const wchar_t* kNotBackedUp = L"Unable to back up the current installation.";
constexpr const wchar_t* kNoFolder = L"Unable to prepare an updated installation folder.";
constexpr const wchar_t* kNotInstalled = L"Unable to install an updated game file.";

class InstallWithBackupTest : public ::testing::Test {
protected:
    InstallWithBackupTest() {
        writeTree(install, oldFiles);
        writeTree(install, unmanaged);
        writeTree(source, newFiles);
        std::filesystem::create_directory(backup);
    }

    bool run(const Paths& vacate, const Paths& installed) {
        error = kEarlierError;
        return installWithBackup(install, source, backup, vacate, installed, error);
    }
    bool update() {
        return run(oldList, newList);
    }

    FileTree with(FileTree tree, const FileTree& more) {
        tree.insert(more.begin(), more.end());
        return tree;
    }

    void expectNothingChanged() {
        EXPECT_EQ(readTree(install), with(oldFiles, unmanaged));
        EXPECT_EQ(readTree(backup), FileTree{});
    }

    TemporaryFolder folder;
    const std::filesystem::path install = folder / L"a game";
    const std::filesystem::path source = folder / L"staging";
    const std::filesystem::path backup = folder / L"backup";
    const FileTree oldFiles{
        {"Vorthmere.exe", "old game"}, {"data/dropped.pak", "old dropped"}, {"data/kept.pak", "old kept"}};
    const FileTree newFiles{
        {"Vorthmere.exe", "new game"}, {"data/kept.pak", "new kept"}, {"more/deep/added.pak", "new added"}};
    const FileTree unmanaged{{"save.txt", "mine"}, {"data/mod.pak", "mine too"}};
    const Paths oldList{"data/kept.pak", "Vorthmere.exe", "data/dropped.pak"};
    const Paths newList{"more/deep/added.pak", "Vorthmere.exe", "data/kept.pak"};
    std::wstring error;
};

TEST_F(InstallWithBackupTest, MovesTheOldFilesAsideAndTheNewOnesInAndTouchesNothingElse) {
    EXPECT_TRUE(update());
    EXPECT_EQ(error, kEarlierError);
    EXPECT_EQ(readTree(install), with(newFiles, unmanaged));
    EXPECT_EQ(readTree(backup), oldFiles);
    EXPECT_EQ(readTree(source), FileTree{});
}

TEST_F(InstallWithBackupTest, ADroppedPathDisappearsAndIsBackAfterARollback) {
    std::filesystem::remove(source / "data/kept.pak");
    EXPECT_FALSE(update());
    EXPECT_EQ(readTree(install).at("data/dropped.pak"), "old dropped");
    writeFile(source / "data/kept.pak", "new kept");
    writeFile(source / "Vorthmere.exe", "new game");
    writeFile(source / "more/deep/added.pak", "new added");
    EXPECT_TRUE(update());
    EXPECT_FALSE(readTree(install).contains("data/dropped.pak"));
}

TEST_F(InstallWithBackupTest, AFileReturnsToThePlaceOfTheFolderThatTheNewReleasePutThere) {
    std::filesystem::remove_all(source);
    writeFile(source / "Vorthmere.exe/bin/game.dll", "new");
    writeFile(source / "data/kept.pak/part.pak", "new");
    EXPECT_FALSE(run(oldList, {"Vorthmere.exe/bin/game.dll", "data/kept.pak/part.pak", "missing"}));
    EXPECT_EQ(error, kNotInstalled);
    expectNothingChanged();
}

TEST_F(InstallWithBackupTest, TheWayBackRemovesTheFoldersThatWereMadeAndNoOthers) {
    std::filesystem::create_directories(install / "more");
    std::filesystem::create_directories(install / "empty before");
    writeFile(source / "more/deep/down/added.pak", "new");
    writeFile(source / "empty before/added.pak", "new");
    EXPECT_FALSE(run(oldList, {"more/deep/down/added.pak", "empty before/added.pak", "missing"}));
    expectNothingChanged();
    EXPECT_TRUE(std::filesystem::exists(install / "more"));
    EXPECT_TRUE(std::filesystem::exists(install / "empty before"));
    EXPECT_FALSE(std::filesystem::exists(install / "more/deep"));
}

TEST_F(InstallWithBackupTest, ANewFileThatIsHeldForDeletionLeavesItsPlaceForTheOldOne) {
    // A scanner that lets others delete and rename the file. If the file is only deleted, its name stays taken.
    const HeldFile scanner(source / "Vorthmere.exe", FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    EXPECT_FALSE(run(oldList, {"Vorthmere.exe", "missing"}));
    expectNothingChanged();
}

TEST_F(InstallWithBackupTest, ANewPathThatIsThereButUnlistedIsBackedUp) {
    writeFile(install / "more/deep/added.pak", "the player's own");
    EXPECT_TRUE(update());
    EXPECT_EQ(readTree(backup), with(oldFiles, {{"more/deep/added.pak", "the player's own"}}));
    EXPECT_EQ(readTree(install), with(newFiles, unmanaged));
}

TEST_F(InstallWithBackupTest, AListedFileThatIsMissingIsNothingToVacate) {
    std::filesystem::remove(install / "data/dropped.pak");
    std::filesystem::remove(install / "Vorthmere.exe");
    EXPECT_TRUE(update());
    EXPECT_EQ(readTree(backup), (FileTree{{"data/kept.pak", "old kept"}}));
    EXPECT_EQ(readTree(install), with(newFiles, unmanaged));
}

TEST_F(InstallWithBackupTest, EmptyListsSucceedAndChangeNothing) {
    EXPECT_TRUE(run({}, {}));
    EXPECT_EQ(error, kEarlierError);
    expectNothingChanged();
    EXPECT_EQ(readTree(source), newFiles);
}

TEST_F(InstallWithBackupTest, ReadOnlyFilesAreReplacedAndRolledBackLikeOthers) {
    makeReadOnly(install / "Vorthmere.exe");
    makeReadOnly(source / "Vorthmere.exe");
    makeReadOnly(source / "more/deep/added.pak");
    std::filesystem::rename(source / "data/kept.pak", folder / L"aside");
    EXPECT_FALSE(update());
    EXPECT_EQ(error, kNotInstalled);
    expectNothingChanged();

    writeTree(source, newFiles);
    makeReadOnly(source / "Vorthmere.exe");
    EXPECT_TRUE(update());
    EXPECT_EQ(readTree(install), with(newFiles, unmanaged));
    EXPECT_EQ(readTree(backup), oldFiles);
}

TEST_F(InstallWithBackupTest, AnExistingFileInTheBackupIsReplaced) {
    writeFile(backup / "Vorthmere.exe", "from before");
    EXPECT_TRUE(update());
    EXPECT_EQ(readTree(backup), oldFiles);
}

TEST_F(InstallWithBackupTest, PathsAreVacatedInByteOrderUpperCaseFirst) {
    const TemporaryFolder outside;
    std::filesystem::create_directory(install / "Zebra");
    const LinkedFolder linked(install / "antelope", outside / L"target");
    EXPECT_FALSE(run({"antelope", "Zebra"}, {}));
    EXPECT_EQ(error, kNotRegular);
    EXPECT_FALSE(run({}, {"antelope", "Zebra"}));
    EXPECT_EQ(error, kNotRegular);
    EXPECT_FALSE(run({"antelope"}, {"Zebra"}));
    EXPECT_EQ(error, kNotRegular);
    std::filesystem::remove(install / "Zebra");
    EXPECT_FALSE(run({"antelope", "Zebra"}, {}));
    EXPECT_EQ(error, kReparsePoint);
    EXPECT_TRUE(linked.targetIsWhole());
}

TEST_F(InstallWithBackupTest, PathsAreInstalledInTheOrderOfTheList) {
    EXPECT_FALSE(run({}, {"missing", "save.txt/below a file"}));
    EXPECT_EQ(error, kNotInstalled);
    EXPECT_FALSE(run({}, {"save.txt/below a file", "missing"}));
    EXPECT_EQ(error, kNoFolder);
    EXPECT_FALSE(run({}, {"Vorthmere.exe", "save.txt/below a file", "missing"}));
    EXPECT_EQ(error, kNoFolder);
    expectNothingChanged();
}

TEST_F(InstallWithBackupTest, EveryVacateBeginsBeforeAnythingIsInstalled) {
    const HeldFile held(install / "data/kept.pak");
    EXPECT_FALSE(run({}, {"Vorthmere.exe", "data/kept.pak"}));
    EXPECT_EQ(error, kNotBackedUp);
    EXPECT_EQ(readTree(source), newFiles);
}

TEST_F(InstallWithBackupTest, AFileInUseAtAnyPlaceLeavesTheInstallationAsItWas) {
    for (const auto& [path, content] : oldFiles) {
        {
            const HeldFile held(install / path);
            EXPECT_FALSE(update()) << path;
        }
        EXPECT_EQ(error, kNotBackedUp) << path;
        expectNothingChanged();
        EXPECT_EQ(readTree(source), newFiles) << path;
    }
}

TEST_F(InstallWithBackupTest, AMissingNewFileAtAnyPlaceRestoresEveryFile) {
    for (const auto& [path, content] : newFiles) {
        writeTree(source, newFiles);
        std::filesystem::remove(source / path);
        EXPECT_FALSE(update()) << path;
        EXPECT_EQ(error, kNotInstalled) << path;
        expectNothingChanged();
    }
}

TEST_F(InstallWithBackupTest, ANewFileInUseAtAnyPlaceRestoresEveryFile) {
    for (const auto& [path, content] : newFiles) {
        writeTree(source, newFiles);
        {
            const HeldFile held(source / path);
            EXPECT_FALSE(update()) << path;
        }
        EXPECT_EQ(error, kNotInstalled) << path;
        expectNothingChanged();
    }
}

TEST_F(InstallWithBackupTest, APathInstalledTwiceFailsAndIsRolledBack) {
    EXPECT_FALSE(run(oldList, {"Vorthmere.exe", "data/kept.pak", "Vorthmere.exe"}));
    EXPECT_EQ(error, kNotInstalled);
    expectNothingChanged();
}

TEST_F(InstallWithBackupTest, AFolderAtAManagedPathStopsTheCallBeforeAnythingWhenItComesFirst) {
    std::filesystem::create_directory(install / "Aaa");
    EXPECT_FALSE(run({"Aaa", "Vorthmere.exe"}, newList));
    EXPECT_EQ(error, kNotRegular);
    expectNothingChanged();
    EXPECT_EQ(readTree(source), newFiles);
}

TEST_F(InstallWithBackupTest, AFolderAtALaterManagedPathPutsBackWhatWasMovedAside) {
    EXPECT_FALSE(run({"Vorthmere.exe", "data"}, newList));
    EXPECT_EQ(error, kNotRegular);
    expectNothingChanged();
}

TEST_F(InstallWithBackupTest, ALinkAlongAManagedPathRefusesAndRestoresEarlierPaths) {
    const TemporaryFolder outside;
    const LinkedFolder linked(install / "linked", outside / L"target");
    for (const char* path : {"linked", "linked/precious.txt", "linked/new.pak", "linked/deeper/new.pak"}) {
        EXPECT_FALSE(run({"Vorthmere.exe", path}, {})) << path;
        EXPECT_EQ(error, kReparsePoint) << path;
        EXPECT_FALSE(run({"Vorthmere.exe"}, {path})) << path;
        EXPECT_EQ(error, kReparsePoint) << path;
        expectNothingChanged();
        EXPECT_TRUE(linked.targetIsWhole());
    }
}

TEST_F(InstallWithBackupTest, ABackupFolderThatCannotBePreparedIsRolledBack) {
    writeFile(backup / "data", "a file where a folder is needed");
    EXPECT_FALSE(update());
    EXPECT_EQ(error, kNoBackupFolder);
    EXPECT_EQ(readTree(install), with(oldFiles, unmanaged));
    EXPECT_EQ(readTree(source), newFiles);
}

TEST_F(InstallWithBackupTest, AnInstallationFolderThatCannotBePreparedIsRolledBack) {
    writeFile(install / "more", "an unmanaged file where a folder is needed");
    EXPECT_FALSE(run(oldList, {"Vorthmere.exe", "data/kept.pak", "more/deep/added.pak"}));
    EXPECT_EQ(error, kNoFolder);
    EXPECT_EQ(readTree(install),
              with(with(oldFiles, unmanaged), {{"more", "an unmanaged file where a folder is needed"}}));
    EXPECT_EQ(readTree(backup), FileTree{});
}

TEST_F(InstallWithBackupTest, AFileMayBecomeAFolder) {
    writeFile(install / "thing", "old file");
    writeFile(source / "thing/inner.pak", "new inner");
    EXPECT_TRUE(run({"thing"}, {"thing/inner.pak"}));
    EXPECT_EQ(readTree(install), with(with(oldFiles, unmanaged), {{"thing/inner.pak", "new inner"}}));
    EXPECT_EQ(readTree(backup), (FileTree{{"thing", "old file"}}));
}

TEST_F(InstallWithBackupTest, AStatusThatCannotBeToldThrowsExistsAndRollsNothingBack) {
    const Link loop(install / "loop", install / "loop");
    try {
        std::ignore = run({"Vorthmere.exe", "loop"}, {"more/deep/added.pak"});
        FAIL() << "nothing thrown";
    } catch (const std::filesystem::filesystem_error& thrown) {
        EXPECT_NE(std::string(thrown.what()).find("exists"), std::string::npos) << thrown.what();
        EXPECT_EQ(thrown.path1(), install / "loop");
    }
    EXPECT_EQ(error, kEarlierError);
    EXPECT_EQ(readTree(backup), (FileTree{{"Vorthmere.exe", "old game"}}));
    EXPECT_EQ(readTree(source), newFiles);
}

TEST_F(InstallWithBackupTest, TheSwappedCallPutsThePreviousReleaseBack) {
    ASSERT_TRUE(update());
    std::wstring second;
    EXPECT_TRUE(installWithBackup(install, backup, source, newList, oldList, second));
    EXPECT_EQ(second, L"");
    EXPECT_EQ(readTree(install), with(oldFiles, unmanaged));
    EXPECT_EQ(readTree(source), newFiles);
    EXPECT_EQ(readTree(backup), FileTree{});
}

TEST_F(InstallWithBackupTest, TheSwappedCallFailsForAPathThatWasNeverBackedUpAndKeepsTheNewRelease) {
    std::filesystem::remove(install / "data/dropped.pak");
    ASSERT_TRUE(update());
    std::wstring second;
    EXPECT_FALSE(installWithBackup(install, backup, source, newList, oldList, second));
    EXPECT_EQ(second, kNotInstalled);
    EXPECT_EQ(readTree(install), with(newFiles, unmanaged));
}

// For example, its volume was removed: then every path in it is "not found", but nothing was backed up.
TEST_F(InstallWithBackupTest, AnInstallationThatVanishedIsNotOneWithoutFiles) {
    std::filesystem::rename(install, folder / "taken away");
    try {
        update();
        FAIL() << "nothing thrown";
    } catch (const std::filesystem::filesystem_error& thrown) {
        EXPECT_NE(std::string(thrown.what()).find("exists"), std::string::npos) << thrown.what();
        EXPECT_EQ(thrown.path1(), install);
        EXPECT_EQ(thrown.code().value(), ERROR_FILE_NOT_FOUND);
    }
    EXPECT_EQ(readTree(source), newFiles);
    EXPECT_FALSE(std::filesystem::exists(install));
}

}  // namespace
}  // namespace vorthmere::update
