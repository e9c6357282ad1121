// openToRead, createToWrite, readBytes, writeBytes, flushFile and closeFile.
#include <array>

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

TEST(StreamContract, CreatesAFile) {
    expectAll({
        {"a file is created", "", creating("a"), 0, "a="},
        {"an existing file is emptied", "a", creating("a"), 0, "a="},
        {"an emptied file keeps its name", "a", creating("A"), 0, "a="},
        {"a file is created through a link", "d/ l->d", creating("l/a"), 0, "d/ d/a= l@"},
        {"a file is not created in a missing folder", "", creating("d/a"), 3},
        {"a file is not created below a file", "a", creating("a/b"), 3},
        {"a file is not created over a folder", "d/", creating("d"), 5},
        {"a read-only file is not emptied", "!a", creating("a"), 5},
        {"a hidden file is not emptied", "~a", creating("a"), 5},
        {"a file's name has no star", "", creating("a*"), 123},
        {"a file's last dot is part of its name", "", creating("a."), 0, "a.="},
        {"a folder's last dots are part of its name", "d../", creating("d../a"), 0, "d../ d../a="},
        {"a file is created with a dot in front", "", creating(".a"), 0, ".a="},
        {.rule = "a mapped file is not emptied",
         .entries = "a",
         .call = creating("a"),
         .expected = 1224,
         .also = [](World& world, const Scene& scene) { ASSERT_EQ(world.map(scene.at("a")), 0u); }},
    });
}

TEST(StreamContract, OpensAFile) {
    expectAll({
        {"a file is opened", "a", reading("a"), 0, "a=a"},
        {"a read-only file is opened", "!a", reading("a"), 0, "!a=a"},
        {"a missing file is not opened", "", reading("a"), 2},
        {"a folder is not opened to read", "d/", reading("d"), 5},
        {"a missing file is not opened through a link", "d/ l->d/a", reading("l"), 2},
    });
}

TEST(StreamContract, FlushesAFile) {
    expectAll({
        {"a file is flushed", "a", flushing("a"), 0, "a=a"},
        {"a file is flushed below a link", "d/ d/a l->d", flushing("l/a"), 0, "d/ d/a=d/a l@"},
        {.rule = "a file is flushed while others read and write it",
         .entries = "a",
         .call = flushing("a"),
         .after = "a=a",
         .holds = {{"a", access::read | access::write, access::read | access::write}}},
        {.rule = "a file that others may not write is not flushed",
         .entries = "a",
         .call = flushing("a"),
         .expected = 32,
         .holds = {{"a", access::read, access::read}}},
        {"a read-only file is not flushed", "!a", flushing("a"), 5},
        {"a missing file is not flushed", "", flushing("a"), 2},
        {"a file in a missing folder is not flushed", "", flushing("d/a"), 3},
        {"a folder is not flushed", "d/", flushing("d"), 5},
    });
}

TEST_F(ContractTest, WhatIsWrittenIsRead) {
    FileHandle file = createToWrite(scene.at("a"), failure);
    ASSERT_FALSE(failure);
    EXPECT_FALSE(writeBytes(file, "first ", 6));
    EXPECT_FALSE(writeBytes(file, "", 0));
    EXPECT_FALSE(writeBytes(file, "second", 6));
    EXPECT_FALSE(closeFile(std::move(file)));
    EXPECT_EQ(scene.read("a"), "first second");
}

TEST_F(ContractTest, ReadingGoesOnWhereItEnded) {
    scene.write("a", "0123456789");
    const FileHandle file = openToRead(scene.at("a"), failure);
    std::array<char, 4> block{};
    EXPECT_EQ(readBytes(file, block.data(), block.size(), failure), 4u);
    EXPECT_EQ(readBytes(file, block.data(), block.size(), failure), 4u);
    EXPECT_EQ(readBytes(file, block.data(), block.size(), failure), 2u);
    EXPECT_EQ(std::string_view(block.data(), 2), "89");
    EXPECT_EQ(readBytes(file, block.data(), block.size(), failure), 0u);
    EXPECT_FALSE(failure);
}

TEST_F(ContractTest, ALockedRangeIsNeitherReadNorWritten) {
    scene.write("a", "content");
    ASSERT_EQ(world.lock(scene.at("a"), 4), 0u);
    const FileHandle file = openToRead(scene.at("a"), failure);
    ASSERT_TRUE(file);
    std::array<char, 4> block{};
    const std::size_t count = readBytes(file, block.data(), block.size(), failure);
    EXPECT_TRUE(follows(world, "a locked range is not read", failure, 33));
    EXPECT_EQ(count, failure ? 0u : block.size());
    const FileHandle writer = createToWrite(scene.at("a"), failure);
    ASSERT_TRUE(writer);
    EXPECT_TRUE(follows(world, "a locked range is not written", writeBytes(writer, "x", 1), 33));
}

TEST_F(ContractTest, AFileIsWrittenThroughItsOwnHandleAlone) {
    scene.make("a");
    const FileHandle reader = openToRead(scene.at("a"), failure);
    EXPECT_EQ(writeBytes(reader, "x", 1).value(), 5);
    const FileHandle writer = createToWrite(scene.at("a"), failure);
    char byte = 0;
    EXPECT_EQ(readBytes(writer, &byte, 1, failure), 0u);
    EXPECT_EQ(failure.value(), 5);
}

}  // namespace
}  // namespace vorthmere::update::contract
