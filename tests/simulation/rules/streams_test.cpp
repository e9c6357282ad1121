#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

TEST(SimulatedStreams, TellWhatCannotBeRead) {
    HandleId file = 0;
    expectAll({
        {"a file", [&](FileSystem& f) { return f.openToRead("plain", file); }, 0},
        {"read-only", [&](FileSystem& f) { return f.openToRead("readonly", file); }, 0},
        {"through links", [&](FileSystem& f) { return f.openToRead("junction/../filelink", file); }, 0},
        {"a cloud file", [&](FileSystem& f) { return f.openToRead("cloud", file); }, 0},
        {"a folder", [&](FileSystem& f) { return f.openToRead("folder", file); }, 5},
        {"a folder with a separator", [&](FileSystem& f) { return f.openToRead("folder/", file); }, 3},
        {"a file with a separator", [&](FileSystem& f) { return f.openToRead("plain/", file); }, 123},
        {"missing", [&](FileSystem& f) { return f.openToRead("none", file); }, 2},
        {"missing parent", [&](FileSystem& f) { return f.openToRead("none/none", file); }, 3},
        {"a dangling link", [&](FileSystem& f) { return f.openToRead("dangling", file); }, 2},
        {"a loop", [&](FileSystem& f) { return f.openToRead("loop", file); }, 1921},
        {"an alias", [&](FileSystem& f) { return f.openToRead("alias", file); }, 1920},
        {"refusing",
         [&](FileSystem& f) {
             f.refuse("plain", 362);
             return f.openToRead("plain", file);
         },
         362},
    });
}

TEST(SimulatedStreams, TellWhatCannotBeWritten) {
    HandleId file = 0;
    expectAll({
        {"new", [&](FileSystem& f) { return f.createToWrite("new", file); }, 0},
        {"there", [&](FileSystem& f) { return f.createToWrite("plain", file); }, 0},
        {"behind a dangling link", [&](FileSystem& f) { return f.createToWrite("dangling", file); }, 0},
        {"read-only", [&](FileSystem& f) { return f.createToWrite("readonly", file); }, 5},
        {"hidden", [&](FileSystem& f) { return f.createToWrite("hidden", file); }, 5},
        {"system", [&](FileSystem& f) { return f.createToWrite("system", file); }, 5},
        {"a folder", [&](FileSystem& f) { return f.createToWrite("empty", file); }, 5},
        {"missing parent", [&](FileSystem& f) { return f.createToWrite("none/new", file); }, 3},
        {"a file as parent", [&](FileSystem& f) { return f.createToWrite("plain/new", file); }, 3},
        {"a dangling junction as parent", [&](FileSystem& f) { return f.createToWrite("danglingjunction/a", file); },
         3},
        {"a loop", [&](FileSystem& f) { return f.createToWrite("loop", file); }, 1921},
        {"a bad name", [&](FileSystem& f) { return f.createToWrite("a>b", file); }, 123},
        {"a stream", [&](FileSystem& f) { return f.createToWrite("new:b", file); }, 123},
        {"with a separator", [&](FileSystem& f) { return f.createToWrite("new/", file); }, 123},
        {"no path", [&](FileSystem& f) { return f.createToWrite("", file); }, 3},
        {"twice by oneself",
         [&](FileSystem& f) {
             EXPECT_EQ(f.createToWrite("new", file), error::none);
             return f.createToWrite("new", file);
         },
         0},
        {"a full disk",
         [&](FileSystem& f) {
             f.volumeOf("C:/").freeBytes = 100;
             return f.createToWrite("new", file);
         },
         112},
        {"write-protected",
         [&](FileSystem& f) {
             f.volumeOf("C:/").isWriteProtected = true;
             return f.createToWrite("plain", file);
         },
         19},
        {"read-only, without emptying it",
         [&](FileSystem& f) { return f.open("readonly", access::write, access::all, false, file); }, 5},
        {"a full disk, there",
         [&](FileSystem& f) {
             f.volumeOf("C:/").freeBytes = 0;
             return f.createToWrite("plain", file);
         },
         0},
    });
}

TEST(SimulatedStreams, WriteAndReadInPieces) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    HandleId file = 0;
    ASSERT_EQ(files.createToWrite("PLAIN", file), error::none);
    EXPECT_EQ(contentAt(files, "plain"), "");
    EXPECT_EQ(files.write(file, "first "), error::none);
    EXPECT_EQ(files.write(file, "second"), error::none);
    EXPECT_EQ(spellingOf(files, "plain"), "C:/Desk/plain");
    char buffer[8] = {};
    std::size_t count = 1;
    EXPECT_EQ(files.read(file, buffer, 8, count), error::accessDenied);
    EXPECT_EQ(count, 0U);
    ASSERT_EQ(files.close(file), error::none);
    EXPECT_EQ(files.write(file, "late"), error::invalidHandle);
    ASSERT_EQ(files.openToRead("plain", file), error::none);
    EXPECT_EQ(files.write(file, "no"), error::accessDenied);
    std::string read;
    do {
        ASSERT_EQ(files.read(file, buffer, 8, count), error::none);
        read.append(buffer, count);
    } while (count > 0);
    EXPECT_EQ(read, "first second");
}

TEST(SimulatedStreams, WriteToOneCopyOfAMachineAlone) {
    Machine machine = desk();
    HandleId file = 0;
    ASSERT_EQ(machine.files.createToWrite("new", file), error::none);
    ASSERT_EQ(machine.files.write(file, "one"), error::none);
    Machine copy = machine;
    ASSERT_EQ(machine.files.write(file, " two"), error::none);
    EXPECT_EQ(contentAt(copy.files, "new"), "one");
    EXPECT_EQ(contentAt(machine.files, "new"), "one two");
    ASSERT_EQ(copy.files.write(file, "!"), error::none);
    EXPECT_EQ(contentAt(copy.files, "new"), "one!");
}

TEST(SimulatedStreams, KeepWhatStillFitsOnAFullDisk) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    HandleId file = 0;
    ASSERT_EQ(files.createToWrite("new", file), error::none);
    files.volumeOf("C:/").freeBytes = 3;
    EXPECT_EQ(files.write(file, "four"), error::diskFull);
    EXPECT_EQ(contentAt(files, "new"), "fou");
    EXPECT_EQ(files.write(file, "r"), error::diskFull);
    ASSERT_EQ(files.close(file), error::none);
    EXPECT_EQ(files.deleteFile("new"), error::none);
    EXPECT_EQ(files.volumeOf("C:/").freeBytes, Disk::kEntryBytes + 3);
}

TEST(SimulatedStreams, SwallowWhatGoesIntoTheNullDevice) {
    Machine machine = desk();
    HandleId file = 0;
    ASSERT_EQ(machine.files.createToWrite("nul", file), error::none);
    EXPECT_EQ(machine.files.write(file, "bytes"), error::none);
    EXPECT_EQ(machine.files.close(file), error::none);
    ASSERT_EQ(machine.files.openToRead("nul", file), error::none);
    char byte = 0;
    std::size_t count = 1;
    EXPECT_EQ(machine.files.read(file, &byte, 1, count), error::none);
    EXPECT_EQ(count, 0U);
}

}  // namespace
}  // namespace vorthmere::update::simulation
