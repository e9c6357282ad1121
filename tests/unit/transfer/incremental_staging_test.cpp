#include "transfer/incremental_staging.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>

#include "tests/support/file_tree.h"
#include "tests/support/folder_link.h"
#include "tests/support/held_file.h"
#include "tests/support/recorded_progress.h"
#include "tests/support/report_fields.h"
#include "tests/support/sample_metadata.h"
#include "tests/support/sample_release.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::entriesOf;
using testing::FileTree;
using testing::HeldFile;
using testing::LinkedFolder;
using testing::LocalRelease;
using testing::readFile;
using testing::readTree;
using testing::RecordedProgress;
using testing::reports;
using testing::sampleReleaseFiles;
using testing::TemporaryFolder;
using testing::writeFile;
using testing::writeTree;

using Steps = std::vector<RecordedProgress::Step>;

constexpr const wchar_t* kListMismatch = L"The file inventory and managed-file list do not match.";
constexpr const wchar_t* kVerificationFailed = L"An updated file failed size or SHA-256 verification.";

class IncrementalStagingTest : public ::testing::Test {
protected:
    IncrementalStagingTest() {
        writeTree(install, sampleReleaseFiles(41));
        std::filesystem::create_directories(staging);
        arguments.install = install;
        release.offerObjects(arguments);
    }

    bool stage() {
        error.clear();
        return stageIncremental(arguments, release.manifest, work, staging, progress.callback(), error);
    }

    void expectFailure(const std::wstring& sentence) {
        EXPECT_FALSE(stage());
        EXPECT_EQ(error, sentence);
        EXPECT_FALSE(std::filesystem::exists(work / L"transfer.txt"));
    }

    /// Replaces the release's files, and its inventory and objects to match.
    void publish(const FileTree& files) {
        newFiles = files;
        release.entries = entriesOf(files);
        release.writeInventory();
        for (const auto& [path, content] : files)
            writeFile(release.objectOf(content), content);
    }

    std::string report() const {
        return readFile(work / L"transfer.txt");
    }

    std::uint64_t changedBytes() const {
        const FileTree installed = readTree(install, ".kvn-update");
        std::uint64_t bytes = 0;
        for (const auto& [path, content] : newFiles)
            if (!installed.contains(path) || installed.at(path) != content) bytes += content.size();
        return bytes;
    }

    TemporaryFolder folder;
    const std::filesystem::path install = folder / L"a game";
    const std::filesystem::path work = install / L".kvn-update";
    const std::filesystem::path staging = work / L"staging";
    FileTree newFiles = sampleReleaseFiles(42);
    LocalRelease release{folder / L"local inputs", newFiles, 42, LocalRelease::Package::none};
    Arguments arguments;
    RecordedProgress progress;
    std::wstring error;
};

TEST_F(IncrementalStagingTest, BuildsTheReleaseFromInstalledFilesAndObjects) {
    ASSERT_TRUE(stage()) << error;
    EXPECT_EQ(error, L"");
    EXPECT_EQ(readTree(staging), newFiles);
    EXPECT_EQ(testing::namesIn(work), (std::set<std::string>{"inventory.txt", "staging", "transfer.txt"}));
    EXPECT_EQ(readFile(work / L"inventory.txt"), readFile(release.inventoryFile));
    EXPECT_EQ(readTree(install, ".kvn-update"), sampleReleaseFiles(41));
}

TEST_F(IncrementalStagingTest, TheReportCountsReusedFilesFetchedFilesAndBytes) {
    ASSERT_TRUE(stage());
    // The list and the file that is the same in every release are reused, the other four differ.
    EXPECT_THAT(report(), reports({{"mode", "incremental"},
                                   {"reused", "2"},
                                   {"downloaded", "4"},
                                   {"bytes", std::to_string(changedBytes())}}));
}

TEST_F(IncrementalStagingTest, ReportsEachFetchedFileWithItsShareOfTheBytes) {
    ASSERT_TRUE(stage());
    const std::uint64_t total = changedBytes();
    Steps expected{{L"Checking installed files...", 9}};
    std::uint64_t done = 0;
    int number = 0;
    for (const char* path : {"KVNUpdater.exe", "Vorthmere.exe", "data/maps/first map.pak", "kvn_release.txt"}) {
        expected.emplace_back(L"Downloading changed files (" + std::to_wstring(++number) + L" of 4)...",
                              12 + done * 65 / total);
        done += newFiles.at(path).size();
    }
    expected.emplace_back(L"Changed files verified; unchanged files reused.", 84);
    EXPECT_EQ(progress.steps(), expected);
}

TEST_F(IncrementalStagingTest, PercentagesOfKnownSizesAreTruncated) {
    publish(testing::withManagedFileList({{"Vorthmere.exe", std::string(100, 'a')},
                                          {"KVNUpdater.exe", std::string(50, 'b')},
                                          {"kvn_release.txt", std::string(7, 'c')},
                                          {"z.pak", std::string(43, 'd')}}));
    writeFile(install / "KVN_MANAGED_FILES.txt", newFiles.at("KVN_MANAGED_FILES.txt"));
    ASSERT_TRUE(stage()) << error;
    // 0, 50, 150 and 157 of 200 bytes are 0, 16.25, 48.75 and 51.025 of the 65 percent.
    EXPECT_EQ(progress.steps(), (Steps{{L"Checking installed files...", 9},
                                       {L"Downloading changed files (1 of 4)...", 12},
                                       {L"Downloading changed files (2 of 4)...", 28},
                                       {L"Downloading changed files (3 of 4)...", 60},
                                       {L"Downloading changed files (4 of 4)...", 63},
                                       {L"Changed files verified; unchanged files reused.", 84}}));
}

TEST_F(IncrementalStagingTest, WithEverythingInstalledAllFilesAreReusedAndNoneFetched) {
    writeTree(install, newFiles);
    std::filesystem::remove_all(release.objectDirectory);
    release.manifest.size = 1;
    ASSERT_TRUE(stage()) << error;
    EXPECT_THAT(report(), reports({{"reused", "6"}, {"downloaded", "0"}, {"bytes", "0"}}));
    EXPECT_EQ(readTree(staging), newFiles);
    EXPECT_EQ(progress.steps(),
              (Steps{{L"Checking installed files...", 9}, {L"Changed files verified; unchanged files reused.", 84}}));
}

TEST_F(IncrementalStagingTest, AChangedEmptyFileIsFetchedThoughThereIsNoByteToFetch) {
    FileTree files = newFiles;
    files["data/empty"] = "";
    publish(testing::withManagedFileList(files));
    writeTree(install, newFiles);
    std::filesystem::remove(install / "data/empty");
    ASSERT_TRUE(stage()) << error;
    EXPECT_THAT(report(), reports({{"reused", "6"}, {"downloaded", "1"}, {"bytes", "0"}}));
    EXPECT_EQ(progress.steps().at(1), RecordedProgress::Step(L"Downloading changed files (1 of 1)...", 12));
}

TEST_F(IncrementalStagingTest, WorksWithoutAProgressCallback) {
    EXPECT_TRUE(stageIncremental(arguments, release.manifest, work, staging, {}, error)) << error;
}

TEST_F(IncrementalStagingTest, ALocalManifestWithoutInventoryDeclinesSilently) {
    arguments.inventoryFile.clear();
    expectFailure(L"");
    EXPECT_TRUE(progress.steps().empty());
}

TEST_F(IncrementalStagingTest, AMissingLocalInventoryFails) {
    std::filesystem::remove(release.inventoryFile);
    expectFailure(L"Unable to read the local file inventory.");
    EXPECT_TRUE(progress.steps().empty());
}

TEST_F(IncrementalStagingTest, AnInventoryLeftFromBeforeIsReplaced) {
    writeFile(work / L"inventory.txt", "left over");
    EXPECT_TRUE(stage()) << error;
}

TEST_F(IncrementalStagingTest, AnInventoryOfInvalidSizeFailsWithTheReadersSentence) {
    writeFile(release.inventoryFile, "");
    expectFailure(L"An update metadata file has an invalid size.");
    writeFile(release.inventoryFile, std::string(393217, 'x'));
    expectFailure(L"An update metadata file has an invalid size.");
    writeFile(release.inventoryFile, std::string(393216, 'x'));
    expectFailure(L"File inventory does not match the selected release.");
}

TEST_F(IncrementalStagingTest, AnInvalidInventoryFailsWithTheParsersSentence) {
    release.manifest.release = 43;
    expectFailure(L"File inventory does not match the selected release.");
    release.manifest.release = 42;
    release.entries.front().path = "../outside";
    release.writeInventory();
    expectFailure(L"File inventory contains an unsafe path, size, or checksum.");
}

TEST_F(IncrementalStagingTest, ALinkOnAManagedPathOfTheInstallationFails) {
    const TemporaryFolder outside;
    std::filesystem::remove_all(install / L"data" / L"maps");
    const LinkedFolder linked(install / L"data" / L"maps", outside / L"target");
    expectFailure(L"The installation contains a reparse point in a managed path.");
    EXPECT_EQ(progress.steps(), (Steps{{L"Checking installed files...", 9}}));
    EXPECT_TRUE(linked.targetIsWhole());
}

TEST_F(IncrementalStagingTest, ChangedBytesEqualToThePackagesSizeDeclineSilentlyAndOneByteLessDoesNot) {
    release.manifest.size = changedBytes();
    expectFailure(L"");
    EXPECT_TRUE(testing::namesIn(staging).empty());
    release.manifest.size = changedBytes() - 1;
    expectFailure(L"");
    release.manifest.size = changedBytes() + 1;
    EXPECT_TRUE(stage()) << error;
}

TEST_F(IncrementalStagingTest, APackageSizeOfZeroAlwaysDeclines) {
    writeTree(install, newFiles);
    release.manifest.size = 0;
    expectFailure(L"");
}

TEST_F(IncrementalStagingTest, AMissingFileAFolderAndAFileOfTheWrongSizeCountAsChanged) {
    writeTree(install, newFiles);
    std::filesystem::remove(install / "Vorthmere.exe");
    std::filesystem::remove(install / "KVNUpdater.exe");
    std::filesystem::create_directory(install / "KVNUpdater.exe");
    writeFile(install / "kvn_release.txt", newFiles.at("kvn_release.txt") + "x");
    const std::size_t bytes = newFiles.at("Vorthmere.exe").size() + newFiles.at("KVNUpdater.exe").size() +
                              newFiles.at("kvn_release.txt").size();
    ASSERT_TRUE(stage()) << error;
    EXPECT_THAT(report(), reports({{"reused", "3"}, {"downloaded", "3"}, {"bytes", std::to_string(bytes)}}));
    EXPECT_EQ(readTree(staging), newFiles);
}

TEST_F(IncrementalStagingTest, AnInstalledFileOfTheRightSizeButOtherContentIsFetched) {
    writeTree(install, newFiles);
    std::string altered = newFiles.at("Vorthmere.exe");
    altered.back() = '!';
    writeFile(install / "Vorthmere.exe", altered);
    ASSERT_TRUE(stage()) << error;
    EXPECT_EQ(readTree(staging), newFiles);
}

TEST_F(IncrementalStagingTest, TwoPathsWithTheSameContentFetchTheSameObjectTwice) {
    FileTree files = newFiles;
    files["data/one.pak"] = files["data/two.pak"] = "the same new content";
    publish(testing::withManagedFileList(files));
    ASSERT_TRUE(stage()) << error;
    EXPECT_EQ(readTree(staging), newFiles);
    // Four as in every update, the list, and the same object once for each of its paths.
    EXPECT_THAT(report(), reports({{"reused", "1"}, {"downloaded", "7"}, {"bytes", std::to_string(changedBytes())}}));
}

TEST_F(IncrementalStagingTest, AFolderThatCannotBeCreatedFails) {
    writeFile(staging / L"data", "a file where a folder is needed");
    expectFailure(L"Unable to prepare an updated file folder.");
}

TEST_F(IncrementalStagingTest, AnInstalledFileThatCannotBeCopiedFails) {
    writeFile(staging / "data/same in every release.pak", "in the way");
    expectFailure(L"Unable to reuse an installed file.");
}

TEST_F(IncrementalStagingTest, AMissingObjectFails) {
    std::filesystem::remove(release.objectOf(newFiles.at("Vorthmere.exe")));
    expectFailure(L"Unable to read a local update object.");
}

TEST_F(IncrementalStagingTest, AnObjectIsNeverCopiedOverAnExistingFile) {
    writeFile(staging / "Vorthmere.exe", newFiles.at("Vorthmere.exe"));
    expectFailure(L"Unable to read a local update object.");
}

TEST_F(IncrementalStagingTest, AnObjectOfTheWrongSizeOrContentFailsVerification) {
    const std::string content = newFiles.at("Vorthmere.exe");
    std::string altered = content;
    altered.front() = 'X';
    for (const std::string& wrong : {altered, content + "x", content.substr(1), std::string()}) {
        writeFile(release.objectOf(content), wrong);
        expectFailure(kVerificationFailed);
        std::filesystem::remove(staging / "Vorthmere.exe");
        std::filesystem::remove(staging / "KVNUpdater.exe");
        std::filesystem::remove(staging / "KVN_MANAGED_FILES.txt");
    }
}

TEST_F(IncrementalStagingTest, AReusedFileIsVerifiedWhereItWasPut) {
    // The file changes after the check of the installation, when the first object is fetched.
    progress.at(L"Downloading changed files (1 of 4)...",
                [this] { writeFile(install / "data/same in every release.pak", std::string(3000, 'x')); });
    expectFailure(kVerificationFailed);
}

TEST_F(IncrementalStagingTest, AListThatNamesOtherFilesThanTheInventoryFails) {
    const std::string list = newFiles.at("KVN_MANAGED_FILES.txt");
    for (const std::string& other :
         {list + "one/more\n",                                                                           // one more
          list.substr(0, list.find("data/maps")) + "data/same in every release.pak\nkvn_release.txt\n",  // one less
          std::string("VORTHMERE.EXE\n") + list}) {
        std::filesystem::remove_all(staging);
        std::filesystem::create_directory(staging);
        FileTree files = newFiles;
        files["KVN_MANAGED_FILES.txt"] = other;
        publish(files);
        expectFailure(kListMismatch);
        newFiles["KVN_MANAGED_FILES.txt"] = list;
    }
}

TEST_F(IncrementalStagingTest, AListThatDiffersOnlyInLetterCaseFails) {
    FileTree files = newFiles;
    std::string& list = files["KVN_MANAGED_FILES.txt"];
    list.replace(list.find("data/maps"), 9, "data/Maps");
    publish(files);
    expectFailure(kListMismatch);
}

TEST_F(IncrementalStagingTest, AnInvalidListFailsWithTheSameSentence) {
    for (const char* list : {"", "only/this\n", "../outside\n"}) {
        std::filesystem::remove_all(staging);
        std::filesystem::create_directory(staging);
        FileTree files = newFiles;
        files["KVN_MANAGED_FILES.txt"] = list;
        publish(files);
        expectFailure(kListMismatch);
    }
}

TEST_F(IncrementalStagingTest, AListLongerThanItsLimitFailsAndOneAtTheLimitDoesNot) {
    FileTree files = newFiles;
    std::string& list = files["KVN_MANAGED_FILES.txt"];
    // Blank lines are allowed in any number.
    list.resize(131072, '\n');
    publish(files);
    release.manifest.size = 1000000;
    EXPECT_TRUE(stage()) << error;

    std::filesystem::remove_all(staging);
    std::filesystem::create_directory(staging);
    std::filesystem::remove(work / L"transfer.txt");
    files["KVN_MANAGED_FILES.txt"].resize(131073, '\n');
    publish(files);
    expectFailure(kListMismatch);
}

TEST_F(IncrementalStagingTest, AReportThatCannotBeWrittenIsIgnored) {
    std::filesystem::create_directory(work / L"transfer.txt");
    EXPECT_TRUE(stage()) << error;
    EXPECT_EQ(progress.lastText(), L"Changed files verified; unchanged files reused.");
}

TEST_F(IncrementalStagingTest, ReadOnlyInstalledFilesAreReused) {
    testing::makeReadOnly(install / "data/same in every release.pak");
    EXPECT_TRUE(stage()) << error;
    EXPECT_EQ(readTree(staging), newFiles);
}

}  // namespace
}  // namespace vorthmere::update
