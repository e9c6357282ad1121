#include "publisher/ignore_rules.h"

#include <gmock/gmock.h>

#include "publisher/game_folder.h"
#include "tests/unit/publisher/publishing.h"

namespace vorthmere::publish::testing {
namespace {

bool isOut(const std::string& patterns, const std::string& path, bool isFolder = false) {
    IgnoreRules rules;
    rules.addLines(patterns);
    return rules.matches(path, isFolder);
}

TEST(IgnoreRules, NameFitsAtEveryDepth) {
    EXPECT_TRUE(isOut("*.log", "a.log"));
    EXPECT_TRUE(isOut("*.log", "data/deep/a.log"));
    EXPECT_FALSE(isOut("*.log", "a.log.txt"));
    EXPECT_TRUE(isOut("a?c", "x/abc"));
    EXPECT_FALSE(isOut("a?c", "ac"));
}

TEST(IgnoreRules, SlashTiesAPatternToTheTop) {
    EXPECT_TRUE(isOut("/build", "build", true));
    EXPECT_FALSE(isOut("/build", "data/build", true));
    EXPECT_TRUE(isOut("data/*.tmp", "data/a.tmp"));
    EXPECT_FALSE(isOut("data/*.tmp", "data/deep/a.tmp"));
    EXPECT_FALSE(isOut("data/*.tmp", "more/data/a.tmp"));
}

TEST(IgnoreRules, TwoStarsCrossFolders) {
    EXPECT_TRUE(isOut("**/cache", "cache", true));
    EXPECT_TRUE(isOut("**/cache", "a/b/cache", true));
    EXPECT_TRUE(isOut("data/**", "data/a/b"));
    EXPECT_FALSE(isOut("data/**", "data", true));
    EXPECT_TRUE(isOut("a/**/z", "a/z"));
    EXPECT_TRUE(isOut("a/**/z", "a/b/c/z"));
}

TEST(IgnoreRules, SlashAtTheEndMeansFolders) {
    EXPECT_TRUE(isOut("build/", "build", true));
    EXPECT_FALSE(isOut("build/", "build"));
}

TEST(IgnoreRules, LastPatternThatFitsDecides) {
    EXPECT_FALSE(isOut("*.log\n!keep.log\n", "keep.log"));
    EXPECT_TRUE(isOut("!keep.log\n*.log\n", "keep.log"));
}

TEST(IgnoreRules, CommentsBlankLinesAndEscapes) {
    EXPECT_FALSE(isOut("# a\n\n   \r\n", "# a"));
    EXPECT_TRUE(isOut("\\#a", "#a"));
    EXPECT_TRUE(isOut("\\!a", "!a"));
    EXPECT_TRUE(isOut("a  \r\n", "a"));
    EXPECT_TRUE(isOut("a\\*b", "a*b"));
    EXPECT_FALSE(isOut("a\\*b", "axb"));
}

TEST(IgnoreRules, ClassesOfCharacters) {
    EXPECT_TRUE(isOut("[a-c]1", "b1"));
    EXPECT_FALSE(isOut("[!a-c]1", "b1"));
    EXPECT_TRUE(isOut("[]x]", "]"));
    EXPECT_TRUE(isOut("[a", "[a"));
}

class KvnIgnoreTest : public PublishingTest {
protected:
    std::vector<std::string> listed(const GameFolderPatterns& patterns = {}) const {
        GameFolder found;
        std::string error;
        EXPECT_TRUE(listGameFolder(game, patterns, found, error)) << error;
        std::vector<std::string> paths;
        for (const ReleaseFile& file : found.files)
            paths.push_back(file.entry.path);
        return paths;
    }
};

TEST_F(KvnIgnoreTest, FileAndOptionsLeaveOutBeforeAnythingIsJudged) {
    using ::testing::ElementsAre;
    putFile(".git/config", "x");
    putFile("data/a+b.tmp", "x");
    putFile(".kvnignore", ".git/\n*.tmp\n/data/sound\n");
    EXPECT_THAT(listed(), ElementsAre("KVNUpdater.exe", "Vorthmere.exe", "data/level one.pak", "data/nothing.txt"));
    EXPECT_THAT(listed({{"nothing.*", "!/data/sound"}, {}}),
                ElementsAre("KVNUpdater.exe", "Vorthmere.exe", "data/level one.pak", "data/sound/copy of theme.ogg",
                            "data/sound/theme.ogg"));
}

}  // namespace
}  // namespace vorthmere::publish::testing
