#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

TEST(SimulatedVolumes, ThatAreAwayRefuseNewOpeningsAndOpenHandles) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    files.putFile("D:/stick/file", contentOf("file"));
    HandleId reader = 0;
    HandleId writer = 0;
    ASSERT_EQ(files.openToRead("D:/stick/file", reader), 0U);
    ASSERT_EQ(files.createToWrite("D:/stick/new", writer), 0U);
    Volume& stick = files.volumeOf("D:/");
    stick.isPresent = false;
    std::uint32_t attributes = 0;
    char byte = 0;
    std::size_t count = 0;
    HandleId file = 0;
    std::string path;
    EXPECT_EQ(files.entryAttributes("D:/stick/file", attributes), 3U);
    EXPECT_EQ(files.openToRead("D:/stick/file", file), 3U);
    EXPECT_EQ(files.createFolder("D:/stick/folder"), 3U);
    EXPECT_EQ(files.moveFile("plain", "D:/stick/plain"), 3U);
    EXPECT_EQ(files.copyFile("D:/stick/file", "copy", true), 3U);
    EXPECT_EQ(files.read(reader, &byte, 1, count), 55U);
    EXPECT_EQ(files.write(writer, "x"), 55U);
    EXPECT_EQ(files.flush(writer), 55U);
    EXPECT_EQ(files.finalPath(reader, path), 55U);
    stick.absentOpening = error::notReady;
    stick.absentHandle = 1167;
    EXPECT_EQ(files.deleteFile("D:/stick/file"), 21U);
    EXPECT_EQ(files.read(reader, &byte, 1, count), 1167U);
    stick.isPresent = true;
    EXPECT_EQ(files.read(reader, &byte, 1, count), 0U);
    EXPECT_EQ(files.close(reader), 0U);
    EXPECT_EQ(files.close(writer), 0U);
    EXPECT_EQ(files.deleteFile("D:/stick/file"), 0U);
}

TEST(SimulatedVolumes, CanBeNetworkFolders) {
    Machine machine = desk();
    Volume share;
    share.name = "//server/share";
    machine.files.disk.addVolume(share);
    machine.files.putFile("\\\\SERVER\\share\\Games\\a", contentOf("a"));
    EXPECT_EQ(contentAt(machine.files, "//server/SHARE/games/A"), "a");
    EXPECT_EQ(spellingOf(machine.files, "//server/share/games/a"), "//server/share/Games/a");
    std::uint32_t attributes = 0;
    EXPECT_EQ(machine.files.entryAttributes("//server/none/games/a", attributes), 3U);
}

TEST(SimulatedVolumes, CountTheirBytes) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    const std::uint64_t before = files.volumeOf("C:/").freeBytes;
    const auto used = [&] { return before - files.volumeOf("C:/").freeBytes; };
    ASSERT_EQ(files.copyFile("plain", "new", false), 0U);
    EXPECT_EQ(used(), Disk::kEntryBytes + 5);
    ASSERT_EQ(files.moveFile("new", "D:/stick/new"), 0U);
    EXPECT_EQ(used(), 0U);
    ASSERT_EQ(files.createFolder("new"), 0U);
    EXPECT_EQ(used(), Disk::kEntryBytes);
    ASSERT_EQ(files.removeEmptyFolder("new"), 0U);
    EXPECT_EQ(used(), 0U);
}

TEST(SimulatedVolumes, LosePowerWithTheBytesThatWereNotFlushed) {
    const auto after = [](const std::vector<Fate>& fates, std::string_view name) {
        Machine machine = desk();
        FileSystem& files = machine.files;
        HandleId file = 0;
        for (const std::string each : {"flushed", "new", "plain"}) {
            EXPECT_EQ(files.createToWrite(each, file), 0U);
            EXPECT_EQ(files.write(file, "bytes"), 0U);
            EXPECT_EQ(each == "flushed" ? files.flush(file) : error::none, 0U);
            EXPECT_EQ(files.close(file), 0U);
        }
        EXPECT_EQ(files.moveFile("new", "renamed"), 0U);
        EXPECT_EQ(files.unflushed().size(), 2U);
        machine.losePower(fates);
        EXPECT_TRUE(machine.isFrozen());
        EXPECT_EQ(files.unflushed().size(), 0U);
        return contentAt(files, "C:/Desk/" + std::string(name));
    };
    const std::string zeros(5, '\0');
    EXPECT_EQ(after({}, "renamed"), "bytes");
    EXPECT_EQ(after({Fate::keep}, "renamed"), "bytes");
    EXPECT_EQ(after({Fate::zero}, "renamed"), zeros);
    EXPECT_EQ(after({Fate::drop}, "renamed"), "");
    EXPECT_EQ(after({Fate::drop}, "plain"), "plain");  // as it was before
    EXPECT_EQ(after({Fate::drop}, "flushed"), "bytes");
    EXPECT_EQ(after({Fate::zero, Fate::drop}, "plain"), zeros);
    EXPECT_EQ(after({Fate::zero, Fate::drop}, "renamed"), "");
}

TEST(SimulatedVolumes, KeepNoDeletedNameThroughAPowerLoss) {
    Machine machine = desk(Profile::classicDelete);
    held(machine, "plain", access::read, access::all);
    ASSERT_EQ(machine.files.deleteFile("plain"), 0U);
    machine.losePower({});
    EXPECT_EQ(spellingOf(machine.files, "C:/Desk/plain"), "(none)");
}

}  // namespace
}  // namespace vorthmere::update::simulation
