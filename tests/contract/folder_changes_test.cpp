// createFolder and removeEmptyFolder.
#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

TEST(FolderContract, CreatesOneFolder) {
    static const std::string longest(255, 'n');
    static const std::string longestTree = longest + "/";
    expectAll({
        {"a folder is created", "", creatingFolder("d"), 0, "d/"},
        {"a separator after its name is allowed", "", creatingFolder("d/"), 0, "d/"},
        {"a folder is not created over a folder", "d/", creatingFolder("d"), 183},
        {"a folder is not created over one in other letter case", "d/", creatingFolder("D"), 183},
        {"a folder is not created over a file", "d", creatingFolder("d"), 183},
        {"a folder is not created over a link", "d/ l->d", creatingFolder("l"), 183},
        {"a folder is not created in a missing one", "", creatingFolder("d/e"), 3},
        {"a folder is not created below a file", "d", creatingFolder("d/e"), 3},
        {"a folder is created through a link", "d/ l->d", creatingFolder("l/e"), 0, "d/ d/e/ l@"},
        {"a folder's name has no star", "", creatingFolder("d*"), 123},
        {"a folder's name has no quotes", "", creatingFolder("d\"e"), 123},
        {"a folder's name has no control character", "", creatingFolder("d\x01"), 123},
        {"a folder's name may have 255 characters", "", creatingFolder("?" + longest), 0, longestTree},
        {"a folder's name has no more than 255 characters", "", creatingFolder("?" + longest + "n"), 123},
        {"a folder on a drive that is not there is not created", "", creatingFolder("Q:/d"), 3},
    });
}

TEST_F(ContractTest, ADrivesRootIsNotCreated) {
    const int told = createFolder(scene.at("C:/")).value();
    EXPECT_TRUE(told == 5 || told == 183) << told;
}

TEST(FolderContract, RemovesOneEmptyFolder) {
    expectAll({
        {"an empty folder is removed", "d/", removingFolder("d"), 0, ""},
        {"a folder is found in other letter case", "d/", removingFolder("D"), 0, ""},
        {"a folder with a file stays", "d/ d/a", removingFolder("d"), 145},
        {"a folder with a folder stays", "d/ d/e/", removingFolder("d"), 145},
        {"a file is no folder to remove", "a", removingFolder("a"), 267},
        {"a missing folder is not found", "", removingFolder("d"), 2},
        {"a folder in a missing one is not found", "", removingFolder("d/e"), 3},
        {"a folder below a file is not found", "a", removingFolder("a/e"), 3},
        {"a read-only folder stays", "!d/", removingFolder("d"), 5},
        {"what a read-only folder holds may go", "!d/ d/e/", removingFolder("d/e"), 0, "!d/"},
        {.rule = "a current folder stays",
         .entries = "d/",
         .call = removingFolder("d"),
         .expected = 32,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.enter(scene.at("d")), 0u); }},
        {"a link to a folder is removed itself", "d/ d/a l->d", removingFolder("l"), 0, "d/ d/a=d/a"},
        {"a link to an empty folder is removed itself", "d/ l->d", removingFolder("l"), 0, "d/"},
        {.rule = "a link to nothing is removed itself",
         .entries = "d/ l->d",
         .call = removingFolder("l"),
         .also = [](World&, const Scene& scene) { ASSERT_FALSE(removeEmptyFolder(scene.at("d"))); }},
    });
}

}  // namespace
}  // namespace vorthmere::update::contract
