// moveFile.
#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

constexpr unsigned kNotRemove = access::read | access::write;

TEST(MoveContract, MovesAFile) {
    expectAll({
        {"a file gets another name", "a", moving("a", "b"), 0, "b=a"},
        {"a file moves to another folder", "a d/", moving("a", "d/b"), 0, "d/ d/b=a"},
        {"a move replaces a file", "a b", moving("a", "b"), 0, "b=a"},
        {"a move gives the name as it is written", "a b", moving("a", "B"), 0, "B=a"},
        {"a file gets another letter case", "a", moving("a", "A"), 0, "A=a"},
        {"a move onto itself changes nothing", "a", moving("a", "a"), 0, "a=a"},
        {"a read-only file is moved and stays so", "!a", moving("a", "b"), 0, "!b=a"},
        {"a hidden file is moved and stays so", "~a", moving("a", "b"), 0, "~b=a"},
        {"a hidden file is replaced", "a ~b", moving("a", "b"), 0, "b=a"},
        {"a read-only file is not replaced", "a !b", moving("a", "b"), 5},
        {"a missing file is not moved", "b", moving("a", "b"), 2},
        {"a file of a missing folder is not moved", "b", moving("d/a", "b"), 3},
        {"a file does not move to a missing folder", "a", moving("a", "d/a"), 3},
        {"a file does not move below a file", "a b", moving("a", "b/c"), 3},
        {"a file does not replace a folder", "a d/", moving("a", "d"), 5},
        {"a name with a star is no target", "a", moving("a", "b*"), 123},
        {"a file moves out of a read-only folder", "!d/ d/a", moving("d/a", "a"), 0, "a=d/a !d/"},
        {"a file does not move to a drive that is not there", "a", moving("a", "Q:/a"), 3},
    });
}

TEST(MoveContract, MovesAFolder) {
    expectAll({
        {"a folder gets another name", "d/ d/a", moving("d", "e"), 0, "e/ e/a=d/a"},
        {"a folder gets another letter case", "d/ d/a", moving("d", "D"), 0, "D/ D/a=d/a"},
        {"a folder does not replace a folder", "d/ e/", moving("d", "e"), 5},
        {"a folder with an open file does not move",
         "d/ d/a",
         moving("d", "e"),
         5,
         "",
         {{"d/a", access::read, access::all}}},
        {.rule = "a current folder does not move",
         .entries = "d/",
         .call = moving("d", "e"),
         .expected = 32,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.enter(scene.at("d")), 0u); }},
    });
}

TEST(MoveContract, MovesWhatOthersHold) {
    expectAll({
        {"a file that is held without sharing does not move", "a", moving("a", "b"), 32, "", {{"a"}}},
        {"a file that is held without sharing its deletion does not move",
         "a",
         moving("a", "b"),
         32,
         "",
         {{"a", access::read, kNotRemove}}},
        {"a file that is held and shared for all moves",
         "a",
         moving("a", "b"),
         0,
         "b=a",
         {{"a", access::read, access::all}}},
        {"a file that is held for its attributes moves",
         "a",
         moving("a", "b"),
         0,
         "b=a",
         {{"a", access::none, access::none}}},
        {"a file that is held without sharing is not replaced", "a b", moving("a", "b"), 5, "", {{"b"}}},
        {"a file that is held without sharing its deletion is not replaced",
         "a b",
         moving("a", "b"),
         5,
         "",
         {{"b", access::read, kNotRemove}}},
        {"a file that is held and shared for all is not replaced",
         "a b",
         moving("a", "b"),
         5,
         "",
         {{"b", access::read, access::all}}},
        {.rule = "a mapped file moves",
         .entries = "a",
         .call = moving("a", "b"),
         .after = "b=a",
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.map(scene.at("a")), 0u); }},
        {.rule = "a mapped file is not replaced",
         .entries = "a b",
         .call = moving("a", "b"),
         .expected = 5,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.map(scene.at("b")), 0u); }},
        {.rule = "a locked file moves",
         .entries = "a",
         .call = moving("a", "b"),
         .after = "b=a",
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.lock(scene.at("a"), 1), 0u); }},
    });
}

TEST(MoveContract, MovesALinkItself) {
    expectAll({
        {"a link to a folder moves itself", "d/ d/a l->d", moving("l", "m"), 0, "d/ d/a=d/a m@"},
        {"a file does not replace a link to a folder", "a d/ l->d", moving("a", "l"), 5},
        {"a file moves through a link in its path", "a d/ l->d", moving("a", "l/b"), 0, "d/ d/b=a l@"},
    });
}

}  // namespace
}  // namespace vorthmere::update::contract
