// What happens to the name of a file that is deleted while another program holds it.
#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

class DeletionContract : public ContractTest {
protected:
    /// Deletes d/a while another program holds it, in each way that the world can show, and runs `test` each time.
    template <typename Test>
    void inEachWay(const Test& test) {
        for (const Deletion deletion : world.deletions()) {
            SCOPED_TRACE(deletion == Deletion::classic ? "classic deletion" : "deletion at once");
            scene.startAnew();
            world.choose(deletion);
            scene.make("d/ d/a b");
            ASSERT_EQ(world.hold(scene.at("d/a"), access::read, access::all), 0u);
            ASSERT_FALSE(deleteFile(scene.at("d/a")));
            test(deletion == Deletion::classic);
        }
    }
};

TEST_F(DeletionContract, TheNameStaysWithTheHolderOrGoesAtOnce) {
    inEachWay([this](bool isClassic) {
        EXPECT_TRUE(
            follows(world, "a pending name tells no attributes", askingAttributes("d/a")(scene), isClassic ? 5 : 2));
        EXPECT_TRUE(follows(world, "a pending name is not opened", reading("d/a")(scene), isClassic ? 5 : 2));
        EXPECT_TRUE(follows(world, "a pending name is not deleted again", deleting("d/a")(scene), isClassic ? 5 : 2));
        std::error_code ignored;
        EXPECT_EQ(listFolder(scene.at("d"), ignored).size(), isClassic ? 1u : 0u);
        world.letGo();
        EXPECT_EQ(scene.tree(), "b=b d/");
    });
}

TEST_F(DeletionContract, NothingTakesAPendingName) {
    inEachWay([this](bool isClassic) {
        EXPECT_TRUE(follows(world, "no file takes a pending name", creating("d/a")(scene), isClassic ? 5 : 0));
        if (!isClassic) {
            EXPECT_FALSE(deleteFile(scene.at("d/a")));
            EXPECT_FALSE(createFolder(scene.at("d/a")));
            EXPECT_FALSE(removeEmptyFolder(scene.at("d/a")));
        } else {
            EXPECT_TRUE(follows(world, "no folder takes a pending name", creatingFolder("d/a")(scene), 5));
        }
        EXPECT_EQ(moving("b", "d/a")(scene).value(), isClassic ? 5 : 0);
    });
}

TEST_F(DeletionContract, AFolderWithAPendingNameIsNotEmpty) {
    inEachWay([this](bool isClassic) {
        EXPECT_EQ(removingFolder("d")(scene).value(), isClassic ? 145 : 0);
        world.letGo();
        EXPECT_EQ(removingFolder("d")(scene).value(), isClassic ? 0 : 2);
    });
}

TEST_F(DeletionContract, AFileThatIsMovedAwayFreesItsNameThoughItIsHeld) {
    scene.make("a b");
    ASSERT_EQ(world.hold(scene.at("a"), access::read, access::all), 0u);
    EXPECT_FALSE(moveFile(scene.at("a"), scene.at("c")));
    EXPECT_FALSE(deleteFile(scene.at("c")));
    EXPECT_FALSE(moveFile(scene.at("b"), scene.at("a")));
    world.letGo();
    EXPECT_EQ(scene.tree(), "a=b");
}

}  // namespace
}  // namespace vorthmere::update::contract
