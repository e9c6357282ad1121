#include "files/file_changes.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "platform/changes.h"
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

class FileChangesTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::error_code failure;
    std::vector<std::filesystem::path> created;
};

bool isThere(const std::filesystem::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

TEST_F(FileChangesTest, CreatesAFolderWithAllMissingParents) {
    failure = createFolders(folder / L"a" / L"b" / L"c", created);
    EXPECT_FALSE(failure);
    EXPECT_EQ(created, (std::vector{folder / L"a", folder / L"a" / L"b", folder / L"a" / L"b" / L"c"}));
    EXPECT_TRUE(std::filesystem::is_directory(folder / L"a" / L"b" / L"c"));
}

TEST_F(FileChangesTest, AFolderThatIsThereAlreadyIsNoFailureButCreatesNothing) {
    failure = createFolders(folder.path(), created);
    EXPECT_FALSE(failure);
    EXPECT_TRUE(created.empty());
}

TEST_F(FileChangesTest, AFileWhereAFolderIsWantedIsAFailure) {
    writeFile(folder / L"file", "content");
    failure = createFolders(folder / L"file", created);
    EXPECT_TRUE(failure);
    failure = createFolders(folder / L"file" / L"below", created);
    EXPECT_TRUE(failure);
    EXPECT_TRUE(created.empty());
    EXPECT_EQ(readFile(folder / L"file"), "content");
}

TEST_F(FileChangesTest, AFolderOnADriveThatDoesNotExistIsAFailure) {
    failure = createFolders(L"Q:\\a\\b", created);
    EXPECT_TRUE(failure);
}

TEST_F(FileChangesTest, CopiesAFileAndOverwritesOnlyWhenAllowed) {
    writeFile(folder / L"from", "new");
    failure = copyFile(folder / L"from", folder / L"to", Overwrite::no);
    EXPECT_FALSE(failure);
    EXPECT_EQ(readFile(folder / L"to"), "new");

    writeFile(folder / L"to", "old");
    failure = copyFile(folder / L"from", folder / L"to", Overwrite::no);
    EXPECT_TRUE(failure);
    EXPECT_EQ(readFile(folder / L"to"), "old");

    failure = copyFile(folder / L"from", folder / L"to", Overwrite::yes);
    EXPECT_FALSE(failure);
    EXPECT_EQ(readFile(folder / L"to"), "new");
}

TEST_F(FileChangesTest, CopyingAMissingFileIsAFailure) {
    failure = copyFile(folder / L"missing", folder / L"to", Overwrite::yes);
    EXPECT_TRUE(failure);
    EXPECT_FALSE(isThere(folder / L"to"));
}

TEST_F(FileChangesTest, RenamesAFileOverAnExistingOne) {
    writeFile(folder / L"from", "new");
    writeFile(folder / L"to", "old");
    failure = moveFile(folder / L"from", folder / L"to");
    EXPECT_FALSE(failure);
    EXPECT_EQ(readTree(folder.path()), (FileTree{{"to", "new"}}));
}

TEST_F(FileChangesTest, RenamingAHeldOrMissingFileIsAFailureThatChangesNothing) {
    writeFile(folder / L"from", "content");
    {
        const HeldFile held(folder / L"from");
        failure = moveFile(folder / L"from", folder / L"to");
        EXPECT_EQ(failure.value(), ERROR_SHARING_VIOLATION);
    }
    EXPECT_EQ(readTree(folder.path()), (FileTree{{"from", "content"}}));
    failure = moveFile(folder / L"missing", folder / L"to");
    EXPECT_EQ(failure.value(), ERROR_FILE_NOT_FOUND);
}

TEST_F(FileChangesTest, RemovesAFileAlsoAReadOnlyOne) {
    writeFile(folder / L"plain", "");
    writeFile(folder / L"read-only", "");
    makeReadOnly(folder / L"read-only");
    for (const wchar_t* name : {L"plain", L"read-only"}) {
        failure = removeFile(folder / name);
        EXPECT_FALSE(failure) << name << failure.message();
        EXPECT_FALSE(isThere(folder / name));
    }
}

TEST_F(FileChangesTest, RemovingAMissingFileIsNoFailure) {
    failure = removeFile(folder / L"missing");
    EXPECT_FALSE(failure);
    failure = removeFile(folder / L"missing folder" / L"missing");
    EXPECT_FALSE(failure);
}

TEST_F(FileChangesTest, RemoveFileLeavesAFolderAndAHeldFile) {
    writeFile(folder / L"sub" / L"file", "content");
    failure = removeFile(folder / L"sub");
    EXPECT_TRUE(failure);
    const HeldFile held(folder / L"sub" / L"file");
    failure = removeFile(folder / L"sub" / L"file");
    EXPECT_TRUE(failure);
    EXPECT_TRUE(isThere(folder / L"sub" / L"file"));
}

TEST_F(FileChangesTest, RemovesATreeWithReadOnlyFilesAndFolders) {
    writeFile(folder / L"tree" / L"a" / L"b" / L"file", "");
    writeFile(folder / L"tree" / L"read-only", "");
    std::filesystem::create_directory(folder / L"tree" / L"empty");
    makeReadOnly(folder / L"tree" / L"read-only");
    makeReadOnly(folder / L"tree" / L"a" / L"b" / L"file");
    makeReadOnly(folder / L"tree" / L"empty");
    failure = removeTree(folder / L"tree");
    EXPECT_FALSE(failure) << failure.message();
    EXPECT_FALSE(isThere(folder / L"tree"));
}

TEST_F(FileChangesTest, RemoveTreeTakesASingleFileAndAMissingPath) {
    writeFile(folder / L"file", "");
    makeReadOnly(folder / L"file");
    failure = removeTree(folder / L"file");
    EXPECT_FALSE(failure);
    EXPECT_FALSE(isThere(folder / L"file"));

    failure = removeTree(folder / L"missing");
    EXPECT_FALSE(failure);
    failure = removeTree(folder / L"missing folder" / L"missing");
    EXPECT_FALSE(failure);
}

TEST_F(FileChangesTest, RemoveTreeReportsWhatItCannotRemove) {
    writeFile(folder / L"tree" / L"held", "content");
    writeFile(folder / L"tree" / L"later", "");
    const HeldFile held(folder / L"tree" / L"held");
    failure = removeTree(folder / L"tree");
    EXPECT_EQ(failure.value(), ERROR_SHARING_VIOLATION);
    EXPECT_TRUE(isThere(folder / L"tree" / L"held"));
}

TEST_F(FileChangesTest, RemoveTreeNeverTouchesWhatALinkLeadsTo) {
    const TemporaryFolder outside;
    writeFile(folder / L"tree" / L"file", "");
    const LinkedFolder linked(folder / L"tree" / L"link", outside / L"target");
    // Under Wine the link itself cannot be removed while its target has content, and the call says so.
    failure = removeTree(folder / L"tree");
    EXPECT_TRUE(linked.targetIsWhole());
    failure = removeTree(folder / L"tree" / L"link");
    EXPECT_TRUE(linked.targetIsWhole());
}

}  // namespace
}  // namespace vorthmere::update
