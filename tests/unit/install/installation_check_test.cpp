#include "install/installation_check.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "files/canonical_path.h"
#include "tests/support/earlier_error.h"
#include "tests/support/file_tree.h"
#include "tests/support/folder_link.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::FileTree;
using testing::Link;
using testing::TemporaryFolder;
using testing::writeFile;

using testing::kEarlierError;
constexpr const wchar_t* kNotAnInstallation = L"This is not a writable Kelvane portable installation.";

class InstallationCheckTest : public ::testing::Test {
protected:
    InstallationCheckTest() {
        testing::writeTree(install, markers);
        std::error_code ignored;
        canonical = weaklyCanonicalPath(install, ignored);
    }

    void expectAccepted(std::filesystem::path path) {
        error = kEarlierError;
        const std::filesystem::path given = path;
        EXPECT_TRUE(checkInstallation(path, error)) << given;
        EXPECT_EQ(path, canonical) << given;
        EXPECT_EQ(error, kEarlierError);
    }

    void expectRefused(std::filesystem::path path) {
        error = kEarlierError;
        const std::filesystem::path given = path;
        EXPECT_FALSE(checkInstallation(path, error)) << given;
        EXPECT_EQ(error, kNotAnInstallation) << given;
    }

    TemporaryFolder folder;
    const std::filesystem::path install = folder / L"a game";
    const FileTree markers{{"Vorthmere.exe", "game"}, {"KVNUpdater.exe", "updater"}, {"KVN_MANAGED_FILES.txt", "list"}};
    std::filesystem::path canonical;
    std::wstring error;
};

TEST_F(InstallationCheckTest, AFolderWithTheThreeMarkersIsAccepted) {
    expectAccepted(install);
    expectAccepted(install.native() + L"\\");
    expectAccepted(folder.path() / L"other" / L".." / L"." / L"a game");
    expectAccepted(install.generic_wstring());
}

TEST_F(InstallationCheckTest, ARelativeFolderIsResolvedAgainstTheCurrentFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    expectAccepted(L"a game");
    expectAccepted(L".\\a game\\..\\a game");
    std::filesystem::current_path(install);
    expectAccepted(L".");
    std::filesystem::current_path(before);
}

TEST_F(InstallationCheckTest, EmptyMarkersAreFilesToo) {
    for (const auto& [name, content] : markers)
        writeFile(install / name, "");
    expectAccepted(install);
}

TEST_F(InstallationCheckTest, EachMarkerIsRequiredAsAFile) {
    for (const auto& [name, content] : markers) {
        std::filesystem::remove(install / name);
        expectRefused(install);
        std::filesystem::create_directory(install / name);
        expectRefused(install);
        std::filesystem::remove(install / name);
        writeFile(install / name, content);
        expectAccepted(install);
    }
}

TEST_F(InstallationCheckTest, MarkersAreFoundByTheFileSystemsOwnRulesForCase) {
    std::filesystem::remove(install / "Vorthmere.exe");
    writeFile(install / "VORTHMERE.EXE", "game");
    expectAccepted(install);
}

TEST_F(InstallationCheckTest, WhatIsNoFolderIsRefusedWithoutAnException) {
    expectRefused(folder / L"missing");
    expectRefused(folder / L"missing" / L"deeper");
    expectRefused(install / L"Vorthmere.exe");
    expectRefused(install / L"Vorthmere.exe" / L"below a file");
    expectRefused(L"Q:\\game");
    expectRefused(L"no*name");
    expectRefused(L"");
}

TEST_F(InstallationCheckTest, ARefusedFolderIsNormalisedAllTheSame) {
    std::filesystem::path path = folder.path() / L"x" / L".." / L"missing";
    std::wstring sentence;
    EXPECT_FALSE(checkInstallation(path, sentence));
    EXPECT_EQ(path, canonical.parent_path() / L"missing");

    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    path = L"missing";
    EXPECT_FALSE(checkInstallation(path, sentence));
    std::filesystem::current_path(before);
    EXPECT_EQ(path, canonical.parent_path() / L"missing");
}

TEST_F(InstallationCheckTest, ALinkedFolderIsFollowedToTheInstallationItself) {
    const Link link(folder / L"link", install);
    expectAccepted(folder / L"link");
}

TEST_F(InstallationCheckTest, AMarkerThatIsALinkToAFilePasses) {
    if (!testing::canLinkFiles()) GTEST_SKIP() << "links to files need a privilege here";
    writeFile(folder / L"elsewhere.exe", "game");
    std::filesystem::remove(install / "Vorthmere.exe");
    const Link link(install / "Vorthmere.exe", folder / L"elsewhere.exe");
    expectAccepted(install);
}

TEST_F(InstallationCheckTest, AMarkerThatIsALinkToAFolderOrToNothingFails) {
    std::filesystem::remove(install / "Vorthmere.exe");
    {
        const testing::LinkedFolder link(install / "Vorthmere.exe", folder / L"target");
        expectRefused(install);
    }
    const Link dangling(install / "Vorthmere.exe", folder / L"nothing");
    expectRefused(install);
}

TEST_F(InstallationCheckTest, AMarkerWhoseStatusCannotBeToldThrowsStatus) {
    std::filesystem::remove(install / "KVNUpdater.exe");
    const Link loop(install / "KVNUpdater.exe", install / "KVNUpdater.exe");
    std::filesystem::path path = install;
    try {
        std::ignore = checkInstallation(path, error);
        FAIL() << "nothing thrown";
    } catch (const std::filesystem::filesystem_error& thrown) {
        EXPECT_NE(std::string(thrown.what()).find("status"), std::string::npos) << thrown.what();
        EXPECT_EQ(thrown.path1(), canonical / "KVNUpdater.exe");
    }
}

TEST_F(InstallationCheckTest, TheFirstFailingMarkerEndsTheCheck) {
    std::filesystem::remove(install / "Vorthmere.exe");
    std::filesystem::remove(install / "KVNUpdater.exe");
    const Link loop(install / "KVNUpdater.exe", install / "KVNUpdater.exe");
    expectRefused(install);
}

TEST_F(InstallationCheckTest, AFolderThatCannotBeResolvedIsRefusedWithoutAnException) {
    const Link loop(folder / L"loop", folder / L"loop");
    expectRefused(folder / L"loop");
}

TEST_F(InstallationCheckTest, NothingIsWritten) {
    expectAccepted(install);
    expectRefused(folder / L"missing");
    EXPECT_EQ(testing::readTree(folder.path()), (FileTree{{"a game/Vorthmere.exe", "game"},
                                                          {"a game/KVNUpdater.exe", "updater"},
                                                          {"a game/KVN_MANAGED_FILES.txt", "list"}}));
}

}  // namespace
}  // namespace vorthmere::update
