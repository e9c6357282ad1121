// copyFile.
#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

constexpr unsigned kNotRead = access::write | access::remove;
constexpr unsigned kNotWrite = access::read | access::remove;

TEST(CopyContract, CopiesAFile) {
    expectAll({
        {"a file is copied", "a", copying("a", "b", Overwrite::no), 0, "a=a b=a"},
        {"a copy replaces a file", "a b", copying("a", "b"), 0, "a=a b=a"},
        {"a copy keeps the name of what it replaces", "a b", copying("a", "B"), 0, "a=a b=a"},
        {"a copy that must not replace does not", "a b", copying("a", "b", Overwrite::no), 80},
        {"a missing file is not copied", "b", copying("a", "b"), 2},
        {"a file of a missing folder is not copied", "b", copying("d/a", "b"), 3},
        {"a file is not copied to a missing folder", "a", copying("a", "d/a"), 3},
        {"a folder is not copied", "d/", copying("d", "e"), 5},
        {"a file is not copied over a folder", "a d/", copying("a", "d"), 5},
        {"a file is not copied to a new name that a folder has", "a d/", copying("a", "d", Overwrite::no), 5},
        {"a file is not copied onto itself", "a", copying("a", "a"), 32},
        {"a read-only file's copy is read-only", "!a", copying("a", "b"), 0, "!a=a !b=a"},
        {"a hidden file's copy is hidden", "~a", copying("a", "b"), 0, "~a=a ~b=a"},
        {"a read-only file is not copied over", "a !b", copying("a", "b"), 5},
        {"a hidden file is not copied over", "a ~b", copying("a", "b"), 5},
        {"a name with a star is no copy", "a", copying("a", "b*"), 123},
        {"the content behind a link is copied", "a l->a", copying("l", "b"), 0, "a=a b=a l@"},
        {"a copy writes through a link", "a b l->b", copying("a", "l"), 0, "a=a b=a l@"},
    });
}

TEST(CopyContract, CopiesWhatOthersHold) {
    expectAll({
        {"a file that is held without sharing is not copied", "a", copying("a", "b"), 32, "", {{"a"}}},
        {"a file that is held without sharing its reading is not copied",
         "a",
         copying("a", "b"),
         32,
         "",
         {{"a", access::read, kNotRead}}},
        {"a file that others write is copied",
         "a",
         copying("a", "b"),
         0,
         "a=a b=a",
         {{"a", access::read | access::write, access::read}}},
        {"a file that is held without sharing is not copied over", "a b", copying("a", "b"), 32, "", {{"b"}}},
        {"a file that is held without sharing its writing is not copied over",
         "a b",
         copying("a", "b"),
         32,
         "",
         {{"b", access::read, kNotWrite}}},
        {"a file that is held for deletion is not copied over",
         "a b",
         copying("a", "b"),
         32,
         "",
         {{"b", access::remove, access::all}}},
        {"a file that is held and shared for all is copied over",
         "a b",
         copying("a", "b"),
         0,
         "a=a b=a",
         {{"b", access::read, access::all}}},
        {.rule = "a mapped file is not copied over",
         .entries = "a b",
         .call = copying("a", "b"),
         .expected = 1224,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.map(scene.at("b")), 0u); }},
        {.rule = "a mapped file is copied",
         .entries = "a",
         .call = copying("a", "b"),
         .after = "a=a b=a",
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.map(scene.at("a")), 0u); }},
        // Windows has created the target by then and removes it again.
        {.rule = "a locked file is not copied",
         .entries = "a",
         .call = copying("a", "b"),
         .expected = 33,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.lock(scene.at("a"), 1), 0u); }},
    });
}

}  // namespace
}  // namespace vorthmere::update::contract
