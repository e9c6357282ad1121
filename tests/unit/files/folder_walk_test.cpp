#include "files/folder_walk.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "platform/entries.h"
#include "tests/support/folder_link.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using ::testing::ElementsAre;
using testing::LinkedFolder;
using testing::TemporaryFolder;
using testing::writeFile;

class FolderWalkTest : public ::testing::Test {
protected:
    std::vector<std::string> walk() {
        std::vector<std::string> seen;
        complete = walkTree(
            folder.path(),
            [&](const std::filesystem::path& path) {
                seen.push_back(path.lexically_relative(folder.path()).generic_string());
                return true;
            },
            failure);
        return seen;
    }

    TemporaryFolder folder;
    std::error_code failure{ERROR_CRC, std::system_category()};
    bool complete = false;
};

TEST_F(FolderWalkTest, ListsFilesFoldersAndLinksAsWhatTheyAre) {
    writeFile(folder / L"b.txt", "");
    writeFile(folder / L"a" / L"inner.txt", "");
    const LinkedFolder linked(folder / L"c", folder / L"a" / L"target");
    std::vector<FolderEntry> entries = listFolder(folder.path(), failure);
    EXPECT_FALSE(failure);
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].name, L"a");
    EXPECT_TRUE(entries[0].attributes.isFolder());
    EXPECT_FALSE(entries[0].attributes.isReparsePoint());
    EXPECT_EQ(entries[1].name, L"b.txt");
    EXPECT_FALSE(entries[1].attributes.isFolder());
    EXPECT_FALSE(entries[1].attributes.isReparsePoint());
    EXPECT_EQ(entries[2].name, L"c");
    EXPECT_TRUE(entries[2].attributes.isReparsePoint());
}

TEST_F(FolderWalkTest, AnEmptyFolderHasNoEntries) {
    EXPECT_TRUE(listFolder(folder.path(), failure).empty());
    EXPECT_FALSE(failure);
}

TEST_F(FolderWalkTest, AMissingFolderAndAFileAreFailures) {
    EXPECT_TRUE(listFolder(folder / L"missing", failure).empty());
    EXPECT_TRUE(failure);
    writeFile(folder / L"file", "");
    EXPECT_TRUE(listFolder(folder / L"file", failure).empty());
    EXPECT_TRUE(failure);
    EXPECT_FALSE(walkTree(
        folder / L"missing", [](const auto&) { return true; }, failure));
    EXPECT_TRUE(failure);
}

TEST_F(FolderWalkTest, TheWalkVisitsEveryEntryAndEachFolderBeforeItsContent) {
    writeFile(folder / L"a" / L"b" / L"c.txt", "");
    writeFile(folder / L"a" / L"d.txt", "");
    std::filesystem::create_directory(folder / L"empty");
    const std::vector<std::string> seen = walk();
    EXPECT_TRUE(complete);
    EXPECT_FALSE(failure);
    EXPECT_THAT(seen, ::testing::UnorderedElementsAre("a", "a/b", "a/b/c.txt", "a/d.txt", "empty"));
    const auto at = [&](const char* path) { return std::find(seen.begin(), seen.end(), path); };
    EXPECT_LT(at("a"), at("a/b"));
    EXPECT_LT(at("a/b"), at("a/b/c.txt"));
    EXPECT_LT(at("a"), at("a/d.txt"));
}

TEST_F(FolderWalkTest, TheWalkVisitsALinkAndDoesNotEnterIt) {
    const TemporaryFolder outside;
    const LinkedFolder linked(folder / L"link", outside / L"target");
    EXPECT_THAT(walk(), ElementsAre("link"));
    EXPECT_TRUE(complete);
    EXPECT_TRUE(linked.targetIsWhole());
}

TEST_F(FolderWalkTest, TheWalkStopsWhenItIsToldTo) {
    writeFile(folder / L"a" / L"b.txt", "");
    int visits = 0;
    EXPECT_FALSE(walkTree(
        folder.path(), [&](const auto&) { return ++visits < 2; }, failure));
    EXPECT_EQ(visits, 2);
    EXPECT_FALSE(failure);
}

}  // namespace
}  // namespace vorthmere::update
