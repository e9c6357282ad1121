#include "publisher/game_folder.h"

#include <gmock/gmock.h>

#include "publisher/path_rules.h"
#include "tests/unit/publisher/publishing.h"
#include "update/managed_path.h"

namespace vorthmere::publish::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GameFolderTest : public PublishingTest {};

TEST_F(GameFolderTest, EmptyFoldersAreReportedOutermostFirst) {
    std::filesystem::create_directories(game / "saves/slot one");
    std::filesystem::create_directories(game / "data/void");
    GameFolder found;
    std::string error;
    ASSERT_TRUE(listGameFolder(game, {}, found, error)) << error;
    EXPECT_THAT(found.emptyFolders, ElementsAre("data/void", "saves", "saves/slot one"));
    EXPECT_THAT(found.files, ::testing::SizeIs(6));
}

TEST_F(GameFolderTest, FolderIsListedThroughATrailingSlash) {
    GameFolder found;
    std::string error;
    ASSERT_TRUE(listGameFolder(game / "", {}, found, error)) << error;
    EXPECT_EQ(found.files.front().entry.path, "KVNUpdater.exe");
}

TEST(PathRules, EveryUnsafePathHasARuleThatItBreaks) {
    for (const std::string path :
         {"", "/a", "a//b", "a/", "./a", "a/..", "a:b", "a.", "a ", "x/COM1.txt", "x/.kvn-update/y", "a\tb", "a\\b"}) {
        ASSERT_FALSE(update::isSafeRelativePath(path, false)) << path;
        EXPECT_NE(brokenPathRule(path), "") << path;
    }
}

TEST(PathRules, SafePathBreaksNone) {
    for (const std::string& path :
         {std::string("a"), std::string("a/b c-d_e.f"), std::string(".config/x"), std::string(240, 'a')})
        EXPECT_EQ(brokenPathRule(path), "") << path;
}

}  // namespace
}  // namespace vorthmere::publish::testing
