// deleteFile and setAttributes.
#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

constexpr std::uint32_t kReadOnly = EntryAttributes::kReadOnly;
constexpr std::uint32_t kNormal = 0x80;

TEST(FileChangeContract, DeletesOneFile) {
    expectAll({
        {"a file is deleted", "a b", deleting("a"), 0, "b=b"},
        {"a file is found in other letter case", "a", deleting("A"), 0, ""},
        {"a hidden file is deleted", "~a", deleting("a"), 0, ""},
        {"a missing file is not found", "", deleting("a"), 2},
        {"a file in a missing folder is not found", "", deleting("d/a"), 3},
        {"a file below a file is not found", "a", deleting("a/b"), 3},
        {"a read-only file is not deleted", "!a", deleting("a"), 5},
        {"a folder is no file to delete", "d/", deleting("d"), 5},
        {"a link to a folder is no file to delete", "d/ d/a l->d", deleting("l"), 5},
        {"a link to a file is deleted itself", "a l->a", deleting("l"), 0, "a=a"},
        {"a file in a read-only folder is deleted", "!d/ d/a", deleting("d/a"), 0, "!d/"},
        {"a name with a star is none", "a", deleting("a*"), 123},
        {"a file that is held without sharing is not deleted", "a", deleting("a"), 32, "", {{"a"}}},
        {"a file that is held without sharing its deletion is not deleted",
         "a",
         deleting("a"),
         32,
         "",
         {{"a", access::read, access::read | access::write}}},
        {.rule = "a mapped file is not deleted",
         .entries = "a",
         .call = deleting("a"),
         .expected = 5,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.map(scene.at("a")), 0u); }},
        {.rule = "a locked file is deleted",
         .entries = "a b",
         .call = deleting("a"),
         .after = "b=b",
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.lock(scene.at("a"), 1), 0u); }},
    });
}

TEST(FileChangeContract, SetsAttributes) {
    expectAll({
        {"a file becomes read-only", "a", setting("a", kReadOnly), 0, "!a=a"},
        {"a file is no longer read-only", "!a", setting("a", kNormal), 0, "a=a"},
        {"a folder becomes read-only and stays a folder", "d/", setting("d", kReadOnly), 0, "!d/"},
        {"no attributes are plain ones", "!a", setting("a", 0), 0, "a=a"},
        {"a missing entry has no attributes to set", "", setting("a", kReadOnly), 2},
        {"an entry in a missing folder has none", "", setting("d/a", kReadOnly), 3},
        {"attributes of a held file can be set", "a", setting("a", kReadOnly), 0, "!a=a", {{"a"}}},
        {"a link's own attributes are set", "a l->a", setting("l", kReadOnly), 0, "a=a !l@"},
    });
}

}  // namespace
}  // namespace vorthmere::update::contract
