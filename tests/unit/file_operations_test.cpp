#include "platform/file_operations.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/file_tree.h"
#include "tests/support/folder_link.h"
#include "tests/support/held_file.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::FileTree;
using testing::HeldFile;
using testing::LinkedFolder;
using testing::makeReadOnly;
using testing::readFile;
using testing::readTree;
using testing::TemporaryFolder;
using testing::writeFile;

class FileOperationsTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::error_code failure{ERROR_CRC, std::system_category()};
};

bool isThere(const std::filesystem::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

TEST_F(FileOperationsTest, CreatesAFolderWithAllMissingParents) {
    EXPECT_TRUE(createFolders(folder / L"a" / L"b" / L"c", failure));
    EXPECT_FALSE(failure);
    EXPECT_TRUE(std::filesystem::is_directory(folder / L"a" / L"b" / L"c"));
}

TEST_F(FileOperationsTest, AFolderThatIsThereAlreadyIsNoFailureButCreatesNothing) {
    EXPECT_FALSE(createFolders(folder.path(), failure));
    EXPECT_FALSE(failure);
}

TEST_F(FileOperationsTest, AFileWhereAFolderIsWantedIsAFailure) {
    writeFile(folder / L"file", "content");
    EXPECT_FALSE(createFolders(folder / L"file", failure));
    EXPECT_TRUE(failure);
    EXPECT_FALSE(createFolders(folder / L"file" / L"below", failure));
    EXPECT_TRUE(failure);
    EXPECT_EQ(readFile(folder / L"file"), "content");
}

TEST_F(FileOperationsTest, AFolderOnADriveThatDoesNotExistIsAFailure) {
    EXPECT_FALSE(createFolders(L"Q:\\a\\b", failure));
    EXPECT_TRUE(failure);
}

TEST_F(FileOperationsTest, CopiesAFileAndOverwritesOnlyWhenAllowed) {
    writeFile(folder / L"from", "new");
    copyFile(folder / L"from", folder / L"to", Overwrite::no, failure);
    EXPECT_FALSE(failure);
    EXPECT_EQ(readFile(folder / L"to"), "new");

    writeFile(folder / L"to", "old");
    copyFile(folder / L"from", folder / L"to", Overwrite::no, failure);
    EXPECT_TRUE(failure);
    EXPECT_EQ(readFile(folder / L"to"), "old");

    copyFile(folder / L"from", folder / L"to", Overwrite::yes, failure);
    EXPECT_FALSE(failure);
    EXPECT_EQ(readFile(folder / L"to"), "new");
}

TEST_F(FileOperationsTest, CopyingAMissingFileIsAFailure) {
    copyFile(folder / L"missing", folder / L"to", Overwrite::yes, failure);
    EXPECT_TRUE(failure);
    EXPECT_FALSE(isThere(folder / L"to"));
}

TEST_F(FileOperationsTest, RenamesAFileOverAnExistingOne) {
    writeFile(folder / L"from", "new");
    writeFile(folder / L"to", "old");
    renameFile(folder / L"from", folder / L"to", failure);
    EXPECT_FALSE(failure);
    EXPECT_EQ(readTree(folder.path()), (FileTree{{"to", "new"}}));
}

TEST_F(FileOperationsTest, RenamingAHeldOrMissingFileIsAFailureThatChangesNothing) {
    writeFile(folder / L"from", "content");
    {
        const HeldFile held(folder / L"from");
        renameFile(folder / L"from", folder / L"to", failure);
        EXPECT_EQ(failure.value(), ERROR_SHARING_VIOLATION);
    }
    EXPECT_EQ(readTree(folder.path()), (FileTree{{"from", "content"}}));
    renameFile(folder / L"missing", folder / L"to", failure);
    EXPECT_EQ(failure.value(), ERROR_FILE_NOT_FOUND);
}

TEST_F(FileOperationsTest, RemovesAFileAlsoAReadOnlyOne) {
    writeFile(folder / L"plain", "");
    writeFile(folder / L"read-only", "");
    makeReadOnly(folder / L"read-only");
    for (const wchar_t* name : {L"plain", L"read-only"}) {
        removeFile(folder / name, failure);
        EXPECT_FALSE(failure) << name << failure.message();
        EXPECT_FALSE(isThere(folder / name));
    }
}

TEST_F(FileOperationsTest, RemovingAMissingFileIsNoFailure) {
    removeFile(folder / L"missing", failure);
    EXPECT_FALSE(failure);
    failure = std::error_code(ERROR_CRC, std::system_category());
    removeFile(folder / L"missing folder" / L"missing", failure);
    EXPECT_FALSE(failure);
}

TEST_F(FileOperationsTest, RemoveFileLeavesAFolderAndAHeldFile) {
    writeFile(folder / L"sub" / L"file", "content");
    removeFile(folder / L"sub", failure);
    EXPECT_TRUE(failure);
    const HeldFile held(folder / L"sub" / L"file");
    removeFile(folder / L"sub" / L"file", failure);
    EXPECT_TRUE(failure);
    EXPECT_TRUE(isThere(folder / L"sub" / L"file"));
}

TEST_F(FileOperationsTest, RemovesATreeWithReadOnlyFilesAndFolders) {
    writeFile(folder / L"tree" / L"a" / L"b" / L"file", "");
    writeFile(folder / L"tree" / L"read-only", "");
    std::filesystem::create_directory(folder / L"tree" / L"empty");
    makeReadOnly(folder / L"tree" / L"read-only");
    makeReadOnly(folder / L"tree" / L"a" / L"b" / L"file");
    makeReadOnly(folder / L"tree" / L"empty");
    removeTree(folder / L"tree", failure);
    EXPECT_FALSE(failure) << failure.message();
    EXPECT_FALSE(isThere(folder / L"tree"));
}

TEST_F(FileOperationsTest, RemoveTreeTakesASingleFileAndAMissingPath) {
    writeFile(folder / L"file", "");
    makeReadOnly(folder / L"file");
    removeTree(folder / L"file", failure);
    EXPECT_FALSE(failure);
    EXPECT_FALSE(isThere(folder / L"file"));

    failure = std::error_code(ERROR_CRC, std::system_category());
    removeTree(folder / L"missing", failure);
    EXPECT_FALSE(failure);
    failure = std::error_code(ERROR_CRC, std::system_category());
    removeTree(folder / L"missing folder" / L"missing", failure);
    EXPECT_FALSE(failure);
}

TEST_F(FileOperationsTest, RemoveTreeReportsWhatItCannotRemove) {
    writeFile(folder / L"tree" / L"held", "content");
    writeFile(folder / L"tree" / L"later", "");
    const HeldFile held(folder / L"tree" / L"held");
    removeTree(folder / L"tree", failure);
    EXPECT_EQ(failure.value(), ERROR_SHARING_VIOLATION);
    EXPECT_TRUE(isThere(folder / L"tree" / L"held"));
}

TEST_F(FileOperationsTest, RemoveTreeNeverTouchesWhatALinkLeadsTo) {
    const TemporaryFolder outside;
    writeFile(folder / L"tree" / L"file", "");
    const LinkedFolder linked(folder / L"tree" / L"link", outside / L"target");
    // Under Wine the link itself cannot be removed while its target has content, and the call says so.
    removeTree(folder / L"tree", failure);
    EXPECT_TRUE(linked.targetIsWhole());
    removeTree(folder / L"tree" / L"link", failure);
    EXPECT_TRUE(linked.targetIsWhole());
}

}  // namespace
}  // namespace vorthmere::update
