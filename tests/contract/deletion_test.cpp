// What becomes of the name of a file or a folder that is deleted while somebody holds it.
#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

class DeletionContract : public ContractTest {
protected:
    /// Runs `test` once for each way of deletion, each in a world of its own.
    template <typename Test>
    void inEachWay(const Test& test) {
        for (const Deletion deletion : world.deletions()) {
            SCOPED_TRACE(deletion == Deletion::classic ? "classic deletion" : "deletion at once");
            Scene each;
            each.world->choose(deletion);
            each.make("d/ d/a b");
            ASSERT_EQ(each.world->hold(each.at("d/a"), access::read, access::all), 0u);
            ASSERT_FALSE(deleteFile(each.at("d/a")));
            test(each, deletion == Deletion::classic);
        }
    }
};

TEST_F(DeletionContract, TheNameStaysWithTheHolderOrGoesAtOnce) {
    inEachWay([](Scene& each, bool isClassic) {
        World& held = *each.world;
        EXPECT_TRUE(follows(held, "a pending name tells no attributes", askingAttributes("d/a")(each), isClassic ? 5 : 2));
        EXPECT_EQ(reading("d/a")(each).value(), isClassic ? 5 : 2);
        EXPECT_TRUE(follows(held, "a pending name is not deleted again", deleting("d/a")(each), isClassic ? 5 : 2));
        std::error_code ignored;
        EXPECT_EQ(listFolder(each.at("d"), ignored).size(), isClassic ? 1u : 0u);
        held.letGo();
        EXPECT_EQ(each.tree(), "b=b d/");
    });
}

TEST_F(DeletionContract, NothingTakesAPendingName) {
    inEachWay([](Scene& each, bool isClassic) {
        World& held = *each.world;
        const int refused = isClassic ? 5 : 0;
        EXPECT_EQ(creating("d/a")(each).value(), refused);
        if (!isClassic) {
            EXPECT_FALSE(deleteFile(each.at("d/a")));
            EXPECT_FALSE(createFolder(each.at("d/a")));
            EXPECT_FALSE(removeEmptyFolder(each.at("d/a")));
        } else {
            EXPECT_TRUE(follows(held, "no folder takes a pending name", creatingFolder("d/a")(each), 5));
        }
        EXPECT_EQ(moving("b", "d/a")(each).value(), refused);
    });
}

TEST_F(DeletionContract, AFolderWithAPendingNameIsNotEmpty) {
    inEachWay([](Scene& each, bool isClassic) {
        EXPECT_EQ(removingFolder("d")(each).value(), isClassic ? 145 : 0);
        each.world->letGo();
        EXPECT_EQ(removingFolder("d")(each).value(), isClassic ? 0 : 2);
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
