// createFolders, removeFile and removeTree.
#include "files/file_changes.h"

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

using Folders = std::vector<std::filesystem::path>;

class CreateFoldersContract : public ContractTest {
protected:
    Folders created;
};

TEST_F(CreateFoldersContract, MakesAllMissingParentsAndTellsWhichParentsFirst) {
    scene.make("a/");
    EXPECT_FALSE(createFolders(scene.at("a/b/c"), created));
    EXPECT_EQ(created, (Folders{scene.at("a/b"), scene.at("a/b/c")}));
    EXPECT_EQ(scene.tree(), "a/ a/b/ a/b/c/");
}

TEST_F(CreateFoldersContract, AFolderThatIsThereIsNoFailureAndNotCreated) {
    scene.make("a/ l->a");
    for (const char* path : {"a", "A", "l", ""})
        EXPECT_FALSE(createFolders(scene.at(path), created)) << path;
    EXPECT_TRUE(created.empty());
}

TEST_F(CreateFoldersContract, AFileInTheWayIsAFailureAndWhatWasCreatedBeforeIsTold) {
    scene.make("a");
    EXPECT_EQ(createFolders(scene.at("a"), created).value(), 183);
    EXPECT_TRUE(createFolders(scene.at("a/b"), created));
    EXPECT_TRUE(createFolders(scene.at("a/b/c"), created));
    EXPECT_TRUE(created.empty());
    EXPECT_EQ(createFolders(scene.at("d/e*/f"), created).value(), 123);
    EXPECT_TRUE(created.empty());
    EXPECT_EQ(createFolders(scene.at("d/f*"), created).value(), 123);
    EXPECT_EQ(scene.tree(), "a=a");
}

TEST_F(CreateFoldersContract, ADriveThatIsNotThereIsAFailure) {
    EXPECT_TRUE(createFolders(scene.at("Q:/a/b"), created));
    EXPECT_TRUE(created.empty());
}

TEST(RemoveFileContract, RemovesAFile) {
    const auto removing = [](std::string path) -> SceneCall {
        return [=](const Scene& scene) { return removeFile(scene.at(path)); };
    };
    expectAll({
        {"removeFile removes a file", "a b", removing("a"), 0, "b=b"},
        {"removeFile removes a read-only file", "!a", removing("a"), 0, ""},
        {"removeFile takes a missing file for removed", "", removing("a"), 0, ""},
        {"removeFile takes a file of a missing folder for removed", "", removing("d/a"), 0, ""},
        {"removeFile leaves a folder", "d/", removing("d"), 5},
        {"removeFile leaves a held file", "a", removing("a"), 32, "", {{"a"}}},
        {"removeFile leaves a held read-only file", "!a", removing("a"), 32, "", {{"a"}}},
    });
}

TEST(RemoveTreeContract, RemovesAFolderWithAllThatItHolds) {
    const auto removing = [](std::string path) -> SceneCall {
        return [=](const Scene& scene) { return removeTree(scene.at(path)); };
    };
    expectAll({
        {"removeTree removes files and folders", "t/ t/a t/d/ t/d/b t/e/ c", removing("t"), 0, "c=c"},
        {"removeTree removes read-only files and folders", "t/ !t/a t/d/ !t/d/b !t/e/ !t/e/f/", removing("t"), 0, ""},
        {"removeTree removes a read-only file", "!a", removing("a"), 0, ""},
        {"removeTree takes a missing tree for removed", "", removing("t"), 0, ""},
        {"removeTree takes a tree in a missing folder for removed", "", removing("d/t"), 0, ""},
        {"removeTree tells what it cannot remove", "t/ t/a", removing("t"), 32, "", {{"t/a"}}},
        {.rule = "removeTree leaves a current folder",
         .entries = "t/ t/d/",
         .call = removing("t"),
         .expected = 32,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.enter(scene.at("t/d")), 0u); }},
        {"removeTree removes a link and never enters it", "o/ o/a t/ t/l->o", removing("t"), 0, "o/ o/a=o/a"},
        {"removeTree removes a link alone", "o/ o/a l->o", removing("l"), 0, "o/ o/a=o/a"},
    });
}

}  // namespace
}  // namespace vorthmere::update::contract
