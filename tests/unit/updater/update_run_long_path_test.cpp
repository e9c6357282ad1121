// Whole runs under the limits of Windows on plain paths, and with names that Windows alters.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/report_fields.h"
#include "tests/support/update_run_fixture.h"
#include "tests/support/windows_folder.h"
#include "tests/support/windows_limits.h"

namespace vorthmere::update {
namespace {

using testing::FileTree;

/// The name that gives an installation in a temporary folder a path of up to `length` characters.
std::wstring nameForLength(std::size_t length) {
    const testing::TemporaryFolder sample;
    // The number at the end of a temporary folder's name has up to ten digits.
    constexpr std::size_t longestTemporaryName = std::wstring_view(L"kelvane-test-4294967295").size();
    const std::size_t before = sample.path().parent_path().native().size() + 1 + longestTemporaryName + 1;
    return std::wstring(length - before, L'g');
}

/// A managed path of the greatest allowed length.
std::string longestManagedPath(const std::string& name) {
    std::string path = "data/" + std::string(100, 'a') + "/" + std::string(100, 'b') + "/" + name;
    return path + std::string(240 - path.size(), 'c');
}

template <std::size_t installationLength>
class DeepInstallationTest : public testing::UpdateRunTest {
protected:
    DeepInstallationTest() : UpdateRunTest(nameForLength(installationLength)) {
        testing::writeFile(install / dropped_, "only in release 41");
        FileTree installed = oldFiles;
        installed[dropped_] = "";
        installed = testing::withManagedFileList(std::move(installed));
        testing::writeFile(install / "KVN_MANAGED_FILES.txt", installed["KVN_MANAGED_FILES.txt"]);
    }

    void publishLongPaths() {
        FileTree files = testing::sampleReleaseFiles(42);
        files[longestManagedPath("new")] = "only in release 42";
        publish(testing::withManagedFileList(std::move(files)));
    }

    int runWithinLimits() {
        const testing::WindowsPathLimits limits;
        return run();
    }

private:
    const std::string dropped_ = longestManagedPath("dropped");
};

using LongPathTest = DeepInstallationTest<200>;

TEST_F(LongPathTest, EveryManagedPathIsUpdatedFromThePackageAndTheNextRunClearsTheWorkFolder) {
    publishLongPaths();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(runWithinLimits(), 0) << std::filesystem::path(error);
        EXPECT_EQ(installedFiles(), newFiles);
    }
}

TEST_F(LongPathTest, EveryManagedPathIsUpdatedFileByFileAndTheNextRunClearsTheWorkFolder) {
    publishLongPaths();
    release->offerObjects(arguments);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(runWithinLimits(), 0) << std::filesystem::path(error);
        EXPECT_EQ(installedFiles(), newFiles);
        EXPECT_THAT(testing::readTree(work).at("transfer.txt"), testing::reports({{"mode", "incremental"}}));
    }
}

TEST_F(LongPathTest, WhatCannotBeInstalledComesBackFromTheBackup) {
    publishLongPaths();
    release->offerObjects(arguments);
    const FileTree before = installedFiles();
    progress.at(L"Installing the new release...",
                [this] { DeleteFileW(testing::extendedPath(work / "staging" / longestManagedPath("new")).c_str()); });
    EXPECT_EQ(runWithinLimits(), 27);
    EXPECT_EQ(error, L"Unable to install an updated game file.");
    EXPECT_EQ(installedFiles(), before);
}

/// The archive tool cannot be started in a folder this deep.
using TooDeepTest = DeepInstallationTest<250>;

TEST_F(TooDeepTest, ThePackageEndsWithTheSentenceOfItsStepAndTheNextRunIsNotHindered) {
    publishLongPaths();
    const FileTree before = installedFiles();
    EXPECT_EQ(runWithinLimits(), 21);
    EXPECT_EQ(error, L"Unable to start the Windows archive tool (error 267).");
    EXPECT_EQ(installedFiles(), before);
    release->offerObjects(arguments);
    EXPECT_EQ(runWithinLimits(), 0) << std::filesystem::path(error);
    EXPECT_EQ(installedFiles(), newFiles);
}

class AlteredNameTest : public testing::UpdateRunTest {};

TEST_F(AlteredNameTest, LeftoversOfSuchNamesAreCleared) {
    publishSampleRelease();
    for (const char* name : {"staging/NUL", "staging/con .x", "staging/a.", "staging/b /c"})
        testing::writeFile(testing::extendedPath(work / name), "left over");
    EXPECT_EQ(run(), 0) << std::filesystem::path(error);
    EXPECT_EQ(testing::namesIn(work), (std::set<std::string>{"backup", "transfer.txt"}));
}

TEST_F(AlteredNameTest, FilesOfDeviceNamesWithABlankAreInstalledAsFilesInBothWays) {
    FileTree files = testing::sampleReleaseFiles(42);
    for (const char* name : {"data/NUL .txt", "data/con .x", "data/aux . .x"})
        files[name] = "a file like others";
    publish(testing::withManagedFileList(std::move(files)));
    for (const bool incremental : {true, false}) {
        SCOPED_TRACE(incremental);
        release->offerPackage(arguments);
        if (incremental) release->offerObjects(arguments);
        EXPECT_EQ(run(), 0) << std::filesystem::path(error);
        EXPECT_EQ(installedFiles(), newFiles);
        arguments.inventoryFile.clear();
        arguments.objectDirectory.clear();
    }
}

}  // namespace
}  // namespace vorthmere::update
