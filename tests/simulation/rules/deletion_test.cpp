#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

/// A desk on which a file was deleted while another program holds it and lets others delete it.
Machine deskWithDeletedFile(Profile profile, HandleId& holder) {
    Machine machine = desk(profile);
    holder = held(machine, "folder/inner", access::read, access::all);
    EXPECT_EQ(machine.files.deleteFile("folder/inner"), error::none);
    return machine;
}

TEST(SimulatedDeletion, KeepsTheNameUntilTheLastHolderGoesTheClassicWay) {
    for (const Profile profile :
         {Profile::classicDelete, Profile::memoryStick, Profile::networkShare, Profile::devDrive}) {
        HandleId holder = 0;
        Machine machine = deskWithDeletedFile(profile, holder);
        FileSystem& files = machine.files;
        HandleId file = 0;
        Facts facts;
        std::vector<Listed> entries;
        EXPECT_EQ(files.entryFacts("folder/inner", facts), 5U);
        EXPECT_EQ(files.targetFacts("folder/inner", facts), 5U);
        EXPECT_EQ(files.openToRead("folder/inner", file), 5U);
        EXPECT_EQ(files.openForItsName("folder/inner", file), 5U);
        EXPECT_EQ(files.createToWrite("folder/inner", file), 5U);
        EXPECT_EQ(files.createFolder("folder/inner"), 5U);
        EXPECT_EQ(files.deleteFile("folder/inner"), 5U);
        EXPECT_EQ(files.setAttributes("folder/inner", 0), 5U);
        EXPECT_EQ(files.moveFile("folder/inner", "new"), 5U);
        EXPECT_EQ(files.moveFile("plain", "folder/inner"), 5U);
        EXPECT_EQ(files.copyFile("plain", "folder/inner", true), 5U);
        EXPECT_EQ(files.copyFile("plain", "folder/inner", false), 5U);
        EXPECT_EQ(files.copyFile("folder/inner", "new", true), 5U);
        EXPECT_EQ(files.listFolder("folder", entries), 0U);
        EXPECT_EQ(entries.size(), 1U);
        EXPECT_EQ(files.removeEmptyFolder("folder"), 145U);
        char buffer[8] = {};
        std::size_t count = 0;
        EXPECT_EQ(files.read(holder, buffer, 8, count), 0U);
        EXPECT_EQ(count, 5U);
        EXPECT_EQ(files.close(holder), 0U);
        EXPECT_EQ(files.entryFacts("folder/inner", facts), 2U);
        EXPECT_EQ(files.removeEmptyFolder("folder"), 0U);
    }
}

TEST(SimulatedDeletion, FreesTheNameAtOnceThePosixWay) {
    HandleId holder = 0;
    Machine machine = deskWithDeletedFile(Profile::posixDelete, holder);
    FileSystem& files = machine.files;
    Facts facts;
    EXPECT_EQ(files.entryFacts("folder/inner", facts), 2U);
    EXPECT_EQ(files.deleteFile("folder/inner"), 2U);
    EXPECT_EQ(files.moveFile("plain", "folder/inner"), 0U);
    EXPECT_EQ(contentAt(files, "folder/inner"), "plain");
    char buffer[8] = {};
    std::size_t count = 0;
    EXPECT_EQ(files.read(holder, buffer, 8, count), 0U);
    EXPECT_EQ(std::string(buffer, count), "inner");
    std::string path;
    EXPECT_EQ(files.finalPath(holder, path), 5U);
    const std::uint64_t before = files.volumeOf("C:/").freeBytes;
    EXPECT_EQ(files.close(holder), 0U);
    EXPECT_EQ(files.volumeOf("C:/").freeBytes, before + Disk::kEntryBytes + 5);
}

TEST(SimulatedDeletion, DoesNotHelpAgainstAHolderWithoutShareDelete) {
    for (const Profile profile : {Profile::classicDelete, Profile::posixDelete}) {
        Machine machine = desk(profile);
        held(machine, "plain", access::read, access::read | access::write);
        EXPECT_EQ(machine.files.deleteFile("plain"), 32U);
    }
}

TEST(SimulatedDeletion, OfAFolderWaitsForItsHolderToo) {
    for (const Profile profile : {Profile::classicDelete, Profile::posixDelete}) {
        Machine machine = desk(profile);
        HandleId file = 0;
        ASSERT_EQ(machine.files.openForItsName("empty", file), 0U);
        EXPECT_EQ(machine.files.removeEmptyFolder("empty"), 0U);
        const Error again = profile == Profile::classicDelete ? 5 : 0;
        const Error below = profile == Profile::classicDelete ? 5 : 3;
        EXPECT_EQ(machine.files.createFolder("empty/new"), below);
        EXPECT_EQ(machine.files.moveFile("plain", "empty/new"), below);
        EXPECT_EQ(machine.files.createFolder("empty"), again);
        EXPECT_EQ(machine.files.close(file), 0U);
    }
}

TEST(SimulatedDeletion, LetsARenameAwayFreeTheName) {
    Machine machine = desk(Profile::classicDelete);
    FileSystem& files = machine.files;
    const HandleId holder = held(machine, "plain", access::read, access::all);
    EXPECT_EQ(files.moveFile("plain", "away"), 0U);
    EXPECT_EQ(files.moveFile("other", "plain"), 0U);
    EXPECT_EQ(files.deleteFile("away"), 0U);
    EXPECT_EQ(contentAt(files, "plain"), "other");
    EXPECT_EQ(files.close(holder), 0U);
    EXPECT_EQ(spellingOf(files, "away"), "(none)");
}

}  // namespace
}  // namespace vorthmere::update::simulation
