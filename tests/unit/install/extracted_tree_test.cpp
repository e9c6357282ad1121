#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "install/extracted_tree.h"
#include "tests/support/earlier_error.h"
#include "tests/support/folder_link.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows_folder.h"
#include "tests/support/wine.h"

namespace vorthmere::update {
namespace {

using testing::LinkedFolder;
using testing::TemporaryFolder;
using testing::writeFile;

using testing::kEarlierError;
constexpr const wchar_t* kUnsafe = L"The extracted update contains an unsafe path.";

class ExtractedTreeTest : public ::testing::Test {
protected:
    bool inspect() {
        return inspectExtractedTree(staging, files, error);
    }

    TemporaryFolder folder;
    std::filesystem::path staging = folder / L"staging";
    ExtractedFiles files{"from an earlier walk"};
    std::wstring error = kEarlierError;
};

TEST_F(ExtractedTreeTest, NamesEveryFileByItsPathWithForwardSlashes) {
    writeFile(staging / L"Vorthmere.exe", "game");
    writeFile(staging / L"data" / L"maps" / L"first map.pak", "maps");
    writeFile(staging / L"data" / L".hidden", "");
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, (ExtractedFiles{"Vorthmere.exe", "data/.hidden", "data/maps/first map.pak"}));
    EXPECT_EQ(error, kEarlierError);
}

TEST_F(ExtractedTreeTest, KeepsTheCaseOfNames) {
    writeFile(staging / L"DATA" / L"Maps.PAK", "");
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, ExtractedFiles{"DATA/Maps.PAK"});
}

TEST_F(ExtractedTreeTest, FoldersAreNotRecorded) {
    std::filesystem::create_directories(staging / L"empty" / L"deeper");
    writeFile(staging / L"file", "");
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, ExtractedFiles{"file"});
}

TEST_F(ExtractedTreeTest, AnEmptyFolderSucceedsWithAnEmptySet) {
    std::filesystem::create_directory(staging);
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, ExtractedFiles{});
    EXPECT_EQ(error, kEarlierError);
}

TEST_F(ExtractedTreeTest, FilesWithUnsafeNamesAreRefused) {
    for (const wchar_t* name : {L"a+b", L"a'b", L"a#b", L"\u00fcml\u00e4ut", L".kvn-update", L"\u65e5\u672c"}) {
        const std::filesystem::path file = staging / L"data" / name;
        writeFile(file, "");
        error = kEarlierError;
        EXPECT_FALSE(inspect()) << name;
        EXPECT_EQ(error, kUnsafe) << name;
        std::filesystem::remove(file);
    }
    EXPECT_TRUE(inspect());
}

TEST_F(ExtractedTreeTest, FilesInFoldersWithUnsafeNamesAreRefused) {
    writeFile(staging / L".kvn-update" / L"file", "");
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, kUnsafe);
}

TEST_F(ExtractedTreeTest, AnEmptyFolderWithAnUnsafeNameIsNotJudged) {
    std::filesystem::create_directories(staging / L"a+b");
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, ExtractedFiles{});
}

TEST_F(ExtractedTreeTest, APathOfExactlyTheLongestLengthIsAcceptedAndOneByteMoreRefused) {
    // So close to the drive's root that the whole path stays below the platform's own limit.
    staging = L"C:\\k" + std::to_wstring(GetCurrentProcessId());
    const std::wstring folderName(119, L'd');
    writeFile(staging / folderName / std::wstring(120, L'f'), "");
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, ExtractedFiles{std::string(119, 'd') + "/" + std::string(120, 'f')});
    writeFile(staging / folderName / std::wstring(121, L'f'), "");
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, kUnsafe);
    std::filesystem::remove_all(staging);
}

TEST_F(ExtractedTreeTest, ALinkEndsTheWalkWithSuccessAndNothingBehindItIsRecorded) {
    const TemporaryFolder outside;
    std::filesystem::create_directories(staging / L"data");
    const LinkedFolder linked(staging / L"data" / L"link", outside / L"target");
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, ExtractedFiles{});
    EXPECT_EQ(error, kEarlierError);
    EXPECT_TRUE(linked.targetIsWhole());
}

// In whatever order the folder lists its entries, the set lacks the link and every entry listed after it.
TEST_F(ExtractedTreeTest, ALinkAmongFilesLeavesTheSetIncompleteAndUnsafeNamesBehindItUnseen) {
    const TemporaryFolder outside;
    std::filesystem::create_directories(staging);
    const LinkedFolder linked(staging / L"m", outside / L"target");
    for (const wchar_t* name : {L"a", L"z"})
        writeFile(staging / name, "");
    EXPECT_TRUE(inspect());
    EXPECT_LE(files.size(), 2u);
    EXPECT_FALSE(files.contains("m/precious.txt"));
    EXPECT_TRUE(linked.targetIsWhole());
}

TEST_F(ExtractedTreeTest, AFolderThatCannotBeOpenedCannotBeInspected) {
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, L"Unable to inspect the extracted update.");
    EXPECT_EQ(files, ExtractedFiles{});

    writeFile(staging, "a file");
    error = kEarlierError;
    EXPECT_FALSE(inspect());
    EXPECT_EQ(error, L"Unable to inspect the extracted update.");
}

TEST_F(ExtractedTreeTest, ANameThatOrdinaryCallsWouldAlterIsTakenAsItIs) {
    writeFile(staging / L"file", "");
    const std::filesystem::path dotted = testing::extendedPath(staging / L"file.");
    ASSERT_TRUE(MoveFileW((staging / L"file").c_str(), dotted.c_str()));
    // Wine leaves out the last dot of an open file's name.
    EXPECT_EQ(inspect(), testing::runsUnderWine());
    EXPECT_EQ(error, testing::runsUnderWine() ? kEarlierError : L"The extracted update contains an unsafe path.");
    ASSERT_TRUE(MoveFileW(dotted.c_str(), testing::extendedPath(staging / L"NUL .txt").c_str()));
    EXPECT_TRUE(inspect());
    EXPECT_EQ(files, ExtractedFiles{"NUL .txt"});
}

TEST_F(ExtractedTreeTest, AStagingFolderReachedThroughALinkNamesItsFilesRelativeToTheResolvedFolder) {
    writeFile(folder / L"real" / L"data" / L"file", "");
    const testing::Link link(folder / L"link", folder / L"real");
    EXPECT_TRUE(inspectExtractedTree(folder / L"link", files, error));
    EXPECT_EQ(files, ExtractedFiles{"data/file"});
}

}  // namespace
}  // namespace vorthmere::update
