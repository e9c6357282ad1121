#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/folder_link.h"
#include "tests/support/held_file.h"
#include "tests/support/launched_game.h"
#include "tests/support/sample_metadata.h"
#include "tests/support/update_run_fixture.h"
#include "updater/update_run.h"

namespace vorthmere::update {
namespace {

using testing::FileTree;
using testing::HeldFile;
using testing::LaunchedGame;
using testing::readTree;
using testing::writeFile;

using UpdateRunPreparationTest = testing::UpdateRunTest;

constexpr const wchar_t* kNotWritable =
    L"The game folder is not writable. Move the portable game outside Program Files or run as administrator.";

/// A manifest file of exactly `size` bytes, filled up with leading zeros of a number, which are allowed.
std::string manifestOfSize(const Manifest& manifest, std::size_t size) {
    const testing::Lines lines = testing::manifestLines(manifest);
    const std::size_t zeros = size - testing::joinLines(lines).size();
    return testing::joinLines(
        testing::withLine(lines, "release=", "release=" + std::string(zeros, '0') + std::to_string(manifest.release)));
}

TEST_F(UpdateRunPreparationTest, Code10AFolderThatIsNoInstallationBeforeAnythingIsReported) {
    arguments.install = folder / L"missing";
    arguments.manifestFile = folder / L"missing too";
    expectFailure(10, L"This is not a writable Kelvane portable installation.");
    EXPECT_TRUE(progress.steps().empty());
}

TEST_F(UpdateRunPreparationTest, Code11AManifestOfInvalidSizeBeforeTheWorkFolderIsTouched) {
    writeFile(work / L"left over", "");
    arguments.manifestFile = folder / L"manifest";
    arguments.packageFile = folder / L"missing.zip";
    expectFailure(11, L"An update metadata file has an invalid size.");
    writeFile(arguments.manifestFile, "");
    expectFailure(11, L"An update metadata file has an invalid size.");
    EXPECT_TRUE(std::filesystem::exists(work / L"left over"));
    EXPECT_EQ(progress.lastText(), L"Checking the alpha channel...");
}

TEST_F(UpdateRunPreparationTest, Code11AManifestOf8193BytesIsRefusedAndOneOf8192Read) {
    arguments.manifestFile = folder / L"manifest";
    arguments.currentRelease = 42;
    writeFile(arguments.manifestFile, manifestOfSize(testing::sampleManifest(), 8193));
    expectFailure(11, L"An update metadata file has an invalid size.");
    writeFile(arguments.manifestFile, manifestOfSize(testing::sampleManifest(), 8192));
    EXPECT_EQ(run(), 0) << error.size();
}

TEST_F(UpdateRunPreparationTest, Code11ALockedManifestCannotBeRead) {
    arguments.manifestFile = folder / L"manifest";
    writeFile(arguments.manifestFile, testing::joinLines(testing::manifestLines(testing::sampleManifest())));
    const HeldFile held(arguments.manifestFile);
    expectFailure(11, L"Unable to read update metadata.");
}

TEST_F(UpdateRunPreparationTest, Code11TheReadersSentenceIsShownWidened) {
    arguments.manifestFile = folder / L"manifest";
    writeFile(arguments.manifestFile, "not a manifest");
    expectFailure(11, L"Manifest header is invalid.");
    writeFile(arguments.manifestFile, "KVN-UPDATE/1\n");
    expectFailure(11, L"Manifest is missing a required field.");
}

TEST_F(UpdateRunPreparationTest, Code12ACurrentGameThatCannotBeLaunched) {
    arguments.manifestFile = folder / L"manifest";
    writeFile(arguments.manifestFile, testing::joinLines(testing::manifestLines(testing::sampleManifest())));
    arguments.currentRelease = 42;
    arguments.noRelaunch = false;
    expectFailure(12, L"Unable to relaunch Kelvane (error 193).");
    EXPECT_EQ(progress.lastText(), L"This installation is already current.");
    EXPECT_FALSE(std::filesystem::exists(work));
}

TEST_F(UpdateRunPreparationTest, ACurrentGameIsRelaunchedInItsFolderUnlessForbidden) {
    arguments.manifestFile = folder / L"manifest";
    writeFile(arguments.manifestFile, testing::joinLines(testing::manifestLines(testing::sampleManifest())));
    writeFile(install / L"Vorthmere.exe", testing::childProgramBytes());
    for (const std::uint32_t current : {42u, 43u}) {
        arguments.currentRelease = current;
        arguments.noRelaunch = true;
        EXPECT_EQ(run(), 0);
        EXPECT_FALSE(testing::gameWasLaunched(install));
        arguments.noRelaunch = false;
        EXPECT_EQ(run(), 0);
        const LaunchedGame game(install);
        EXPECT_EQ(game.fact("current folder"), install.string());
    }
    EXPECT_FALSE(std::filesystem::exists(work));
}

TEST_F(UpdateRunPreparationTest, Code13ALinkAsWorkFolderIsRefusedAndLeftInPlace) {
    publishSampleRelease();
    const testing::TemporaryFolder outside;
    const testing::LinkedFolder linked(work, outside / L"target");
    expectFailure(13, L"The updater work folder is an unsafe reparse point.");
    EXPECT_TRUE(linked.targetIsWhole());
    EXPECT_NE(GetFileAttributesW(work.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(UpdateRunPreparationTest, Code14ALeftoverThatCannotBeRemoved) {
    publishSampleRelease();
    writeFile(work / L"staging" / L"held", "");
    const HeldFile held(work / L"staging" / L"held");
    expectFailure(14, kNotWritable);
    EXPECT_EQ(progress.lastText(), L"Checking the alpha channel...");
}

TEST_F(UpdateRunPreparationTest, ALeftoverWorkFolderIsRemovedCompletely) {
    publishSampleRelease();
    writeFile(work / L"package.zip", "old package");
    writeFile(work / L"staging" / L"data" / L"old.pak", "old staging");
    writeFile(work / L"backup" / L"old.pak", "old backup");
    writeFile(work / L"transfer.txt", "old report");
    writeFile(work / L"unknown" / L"file", "");
    testing::makeReadOnly(work / L"backup" / L"old.pak");
    bool seen = false;
    progress.at(L"Preparing the complete update package...", [&] {
        seen = true;
        EXPECT_EQ(testing::namesIn(work), (std::set<std::string>{"staging"}));
        EXPECT_TRUE(testing::namesIn(work / L"staging").empty());
    });
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(seen);
    EXPECT_EQ(readTree(work / L"backup"), oldFiles);
}

TEST_F(UpdateRunPreparationTest, AFileInThePlaceOfTheWorkFolderIsRemoved) {
    publishSampleRelease();
    writeFile(work, "a file");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(installedFiles(), newFiles);
}

TEST_F(UpdateRunPreparationTest, Code14AStagingFolderThatCannotBeEmptiedForThePackage) {
    publishSampleRelease();
    release->offerObjects(arguments);
    std::filesystem::remove_all(release->objectDirectory);
    std::unique_ptr<HeldFile> held;
    progress.at(L"Checking installed files...", [&] {
        writeFile(work / L"staging" / L"held", "");
        held = std::make_unique<HeldFile>(work / L"staging" / L"held");
    });
    expectFailure(14, L"Unable to prepare the complete update package.");
    EXPECT_NE(progress.lastText(), L"Preparing the complete update package...");
}

TEST_F(UpdateRunPreparationTest, ARelativeInstallationFolderIsWorkedOnWhereverTheRunLeads) {
    publishSampleRelease();
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    arguments.install = L"a game";
    progress.at(L"Checking the alpha channel...", [&] { std::filesystem::current_path(before); });
    EXPECT_EQ(run(), 0);
    std::filesystem::current_path(before);
    EXPECT_EQ(installedFiles(), newFiles);
}

}  // namespace
}  // namespace vorthmere::update
