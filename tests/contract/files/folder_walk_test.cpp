// walkTree.
#include "files/folder_walk.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class WalkContract : public ContractTest {
protected:
    /// Stops after `most` visits.
    std::vector<std::string> walk(std::string_view folder, std::size_t most = 100) {
        std::vector<std::string> seen;
        const auto visit = [&](const std::filesystem::path& path) {
            seen.push_back(path.lexically_relative(scene.at("")).generic_string());
            return seen.size() < most;
        };
        complete = walkTree(scene.at(folder), visit, failure);
        return seen;
    }
    bool complete = false;
};

TEST_F(WalkContract, VisitsEveryEntryAndEachFolderBeforeItsContent) {
    scene.make("a/ a/b/ a/b/c a/d empty/");
    const std::vector<std::string> seen = walk("");
    EXPECT_TRUE(complete);
    EXPECT_FALSE(failure);
    EXPECT_THAT(seen, UnorderedElementsAre("a", "a/b", "a/b/c", "a/d", "empty"));
    const auto at = [&](const char* path) { return std::find(seen.begin(), seen.end(), path); };
    EXPECT_LT(at("a"), at("a/b"));
    EXPECT_LT(at("a/b"), at("a/b/c"));
    EXPECT_LT(at("a"), at("a/d"));
}

TEST_F(WalkContract, VisitsALinkAndDoesNotEnterIt) {
    scene.make("o/ o/a t/ t/l->o");
    EXPECT_THAT(walk("t"), ElementsAre("t/l"));
    EXPECT_TRUE(complete);
}

TEST_F(WalkContract, StopsWhenItIsToldTo) {
    scene.make("a/ a/b a/c");
    EXPECT_EQ(walk("", 2).size(), 2u);
    EXPECT_FALSE(complete);
    EXPECT_FALSE(failure);
}

TEST_F(WalkContract, AMissingFolderAndAFileAreFailures) {
    scene.make("a");
    EXPECT_THAT(walk("missing"), ElementsAre());
    EXPECT_FALSE(complete);
    EXPECT_EQ(failure.value(), 3);
    walk("a");
    EXPECT_FALSE(complete);
    EXPECT_TRUE(failure);
}

}  // namespace
}  // namespace vorthmere::update::contract
