#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/held_file.h"
#include "tests/support/sample_metadata.h"
#include "tests/support/update_run_fixture.h"

namespace vorthmere::update {
namespace {

using testing::FileTree;
using testing::HeldFile;
using testing::makeZip;
using testing::readFile;
using testing::sampleReleaseFiles;
using testing::writeFile;

constexpr const wchar_t* kSizeWrong = L"The update archive size does not match the release manifest.";
constexpr const wchar_t* kDigestWrong = L"The update archive failed SHA-256 verification.";
constexpr const wchar_t* kRejected = L"The Windows archive tool rejected the update package.";
constexpr const wchar_t* kMismatch = L"The update package and managed-file list do not match.";

/// A zip holds each name twice and no checksum of names.
std::string withNamesReplaced(std::string zip, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = zip.find(from, at)) != std::string::npos; at += to.size())
        zip.replace(at, from.size(), to);
    return zip;
}

class UpdateRunPackageTest : public testing::UpdateRunTest {
protected:
    /// Expects a failure whose last reported step is `text`.
    void expectFailureAt(const std::wstring& text, int code, const std::wstring& sentence) {
        expectFailure(code, sentence);
        EXPECT_EQ(progress.lastText(), text);
    }

    /// Packs these files into the package, whatever the inventory says.
    void package(const FileTree& files, const std::vector<std::wstring>& options = {}) {
        std::filesystem::remove(release->packageFile);
        makeZip(release->packageFile, files, options);
        release->describePackage();
    }
};

TEST_F(UpdateRunPackageTest, Code16APackageThatCannotBeCopied) {
    publishSampleRelease();
    {
        const HeldFile held(release->packageFile);
        expectFailureAt(L"Preparing the verified update package...", 16, L"Unable to stage the local update package.");
    }
    std::filesystem::remove(release->packageFile);
    expectFailureAt(L"Preparing the verified update package...", 16, L"Unable to stage the local update package.");
}

TEST_F(UpdateRunPackageTest, Code16APackageThatIsAFolderCannotBeCopied) {
    publishSampleRelease();
    progress.at(L"Preparing the verified update package...", [&] {
        std::filesystem::remove(release->packageFile);
        std::filesystem::create_directory(release->packageFile);
    });
    expectFailureAt(L"Preparing the verified update package...", 16, L"Unable to stage the local update package.");
}

TEST_F(UpdateRunPackageTest, Code17APackageOneByteLongerOrShorterIsRefusedBeforeItIsHashed) {
    publishSampleRelease();
    const std::string whole = readFile(release->packageFile);
    for (const std::string& wrong : {whole + "x", whole.substr(0, whole.size() - 1), std::string()}) {
        writeFile(release->packageFile, wrong);
        expectFailureAt(L"Preparing the verified update package...", 17, kSizeWrong);
    }
}

TEST_F(UpdateRunPackageTest, Code18AnotherDigestIsRefusedBeforeThePackageIsListed) {
    publishSampleRelease();
    std::string altered = readFile(release->packageFile);
    altered.back() = 'x';
    writeFile(release->packageFile, altered);
    expectFailureAt(L"Verifying package integrity...", 18, kDigestWrong);
}

TEST_F(UpdateRunPackageTest, Code18APackageThatCannotBeHashedShowsTheHashingSentence) {
    publishSampleRelease();
    std::unique_ptr<HeldFile> held;
    progress.at(L"Verifying package integrity...", [&] { held = std::make_unique<HeldFile>(work / L"package.zip"); });
    expectFailureAt(L"Verifying package integrity...", 18, L"Unable to read the downloaded update archive.");
}

TEST_F(UpdateRunPackageTest, AManifestWithTheDigestInUpperCaseIsAccepted) {
    publishSampleRelease();
    for (char& c : release->manifest.sha256)
        c = static_cast<char>(std::toupper(c));
    release->writeManifest();
    EXPECT_EQ(run(), 0);
}

TEST_F(UpdateRunPackageTest, Code21WhatIsNoArchiveIsRejected) {
    publishSampleRelease();
    writeFile(release->packageFile, "not a zip archive");
    release->describePackage();
    expectFailureAt(L"Inspecting the update package...", 21, kRejected);
}

TEST_F(UpdateRunPackageTest, Code21AnEmptyArchive) {
    publishSampleRelease();
    package({});
    expectFailureAt(L"Inspecting the update package...", 21, L"The update archive is empty.");
}

TEST_F(UpdateRunPackageTest, Code21AnUnsafePathInTheListingIsRefusedBeforeAnythingIsUnpacked) {
    publishSampleRelease();
    FileTree files = newFiles;
    files["dkvn-update/x"] = "";
    package(files);
    const std::string packed = readFile(release->packageFile);
    for (const auto& [safe, unsafe] :
         {std::pair("kvn_release.txt", "kvn+release.txt"), std::pair("kvn_release.txt", "../_release.txt"),
          std::pair("data/maps", "data\\maps"), std::pair("dkvn-update", ".KVN-update")}) {
        writeFile(release->packageFile, withNamesReplaced(packed, safe, unsafe));
        release->describePackage();
        expectFailureAt(L"Inspecting the update package...", 21, L"The update archive contains an unsafe path.");
        EXPECT_TRUE(testing::namesIn(work / L"staging").empty());
    }
}

TEST_F(UpdateRunPackageTest, Code22APackageThatListsButDoesNotUnpack) {
    publishSampleRelease();
    package(newFiles, {L"--options", L"zip:compression=store"});
    std::string broken = readFile(release->packageFile);
    const std::size_t content = broken.find("maps of release 42");
    ASSERT_NE(content, std::string::npos);
    broken[content] = 'X';
    writeFile(release->packageFile, broken);
    release->describePackage();
    expectFailureAt(L"Unpacking updated game files...", 22, kRejected);
    EXPECT_FALSE(std::filesystem::exists(work / L"transfer.txt"));
}

TEST_F(UpdateRunPackageTest, Code23APackageWithoutManagedFileList) {
    publishSampleRelease();
    FileTree files = newFiles;
    files.erase("KVN_MANAGED_FILES.txt");
    package(files);
    expectFailureAt(L"Unpacking updated game files...", 23, L"An update metadata file has an invalid size.");
}

TEST_F(UpdateRunPackageTest, Code23AnInvalidManagedFileListBeforeTheTreeIsCompared) {
    publishSampleRelease();
    FileTree files = newFiles;
    files["not listed"] = "";
    files["KVN_MANAGED_FILES.txt"] = "Vorthmere.exe\n../outside\n";
    package(files);
    expectFailureAt(L"Unpacking updated game files...", 23, L"Managed-file list contains an unsafe or duplicate path.");
    files["KVN_MANAGED_FILES.txt"] = "Vorthmere.exe\n";
    package(files);
    expectFailureAt(L"Unpacking updated game files...", 23, L"Managed-file list is missing a required runtime.");
}

TEST_F(UpdateRunPackageTest, Code23AListOneByteAboveItsLimitWhileOneAtTheLimitIsRead) {
    publishSampleRelease();
    FileTree files = newFiles;
    files["KVN_MANAGED_FILES.txt"].resize(131073, '\n');
    package(files);
    expectFailureAt(L"Unpacking updated game files...", 23, L"An update metadata file has an invalid size.");
    files["KVN_MANAGED_FILES.txt"].resize(131072);
    package(files);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(installedFiles(), files);
}

TEST_F(UpdateRunPackageTest, Code24APackageWithAFileMoreOrLessThanItsList) {
    publishSampleRelease();
    FileTree more = newFiles;
    more["data/not listed.pak"] = "";
    package(more);
    expectFailureAt(L"Unpacking updated game files...", 24, kMismatch);
    FileTree less = newFiles;
    less.erase("data/maps/first map.pak");
    package(less);
    expectFailureAt(L"Unpacking updated game files...", 24, kMismatch);
}

TEST_F(UpdateRunPackageTest, Code24AListThatDiffersFromThePackageInLetterCaseOnly) {
    publishSampleRelease();
    FileTree files = newFiles;
    std::string& list = files["KVN_MANAGED_FILES.txt"];
    list.replace(list.find("data/maps"), 9, "data/Maps");
    package(files);
    expectFailureAt(L"Unpacking updated game files...", 24, kMismatch);
}

TEST_F(UpdateRunPackageTest, Code24BeforeTheInstalledListIsRead) {
    publishSampleRelease();
    FileTree more = newFiles;
    more["not listed"] = "";
    package(more);
    writeFile(install / "KVN_MANAGED_FILES.txt", "");
    EXPECT_EQ(run(), 24);
    EXPECT_EQ(error, kMismatch);
}

TEST_F(UpdateRunPackageTest, AnEmptyFolderInThePackageIsNoMismatch) {
    publishSampleRelease();
    FileTree files = newFiles;
    files["empty folder/"] = "";
    package(files);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(installedFiles(), newFiles);
    EXPECT_FALSE(std::filesystem::exists(install / L"empty folder"));
}

}  // namespace
}  // namespace vorthmere::update
