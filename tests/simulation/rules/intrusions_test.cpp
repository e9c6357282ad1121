#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

using Kind = Intrusion::Kind;

Error actOn(Machine& machine, Kind kind, const std::string& path, const std::string& second = "") {
    return act(machine, {.kind = kind, .path = path, .second = second});
}

TEST(Intrusions, FollowTheRulesOfWindowsThemselves) {
    const auto told = [](Kind kind, const std::string& path, const std::string& second = "") {
        Machine machine = desk();
        HandleId file = 0;
        EXPECT_EQ(machine.files.open("other", access::read, access::none, false, file), 0U);
        const Error result = actOn(machine, kind, path, second);
        EXPECT_EQ(machine.files.caller, machine.caller);
        return result;
    };
    EXPECT_EQ(told(Kind::open, "C:/Desk/plain"), 0U);
    EXPECT_EQ(told(Kind::open, "C:/Desk/other"), 32U);
    EXPECT_EQ(told(Kind::open, "C:/Desk/none"), 2U);
    EXPECT_EQ(told(Kind::create, "C:/Desk/new", "x"), 0U);
    EXPECT_EQ(told(Kind::create, "C:/Desk/readonly", "x"), 5U);
    EXPECT_EQ(told(Kind::createFolder, "C:/Desk/plain"), 183U);
    EXPECT_EQ(told(Kind::remove, "C:/Desk/plain"), 0U);
    EXPECT_EQ(told(Kind::remove, "C:/Desk/empty"), 0U);
    EXPECT_EQ(told(Kind::remove, "C:/Desk/junction"), 0U);
    EXPECT_EQ(told(Kind::remove, "C:/Desk/folder"), 145U);
    EXPECT_EQ(told(Kind::remove, "C:/Desk/other"), 32U);
    EXPECT_EQ(told(Kind::rename, "C:/Desk/plain", "C:/Desk/folder/x"), 0U);
    EXPECT_EQ(told(Kind::rename, "C:/Desk/plain", "C:/Desk/other"), 5U);
    EXPECT_EQ(told(Kind::setReadOnly, "C:/Desk/other"), 0U);
    EXPECT_EQ(told(Kind::setReadOnly, "C:/Desk/none"), 2U);
    EXPECT_EQ(told(Kind::lock, "C:/Desk/plain"), 0U);
    EXPECT_EQ(told(Kind::lock, "C:/Desk/other"), 32U);
    EXPECT_EQ(told(Kind::map, "C:/Desk/plain"), 0U);
    EXPECT_EQ(told(Kind::map, "C:/Desk/other"), 32U);
    EXPECT_EQ(told(Kind::plantJunction, "C:/Desk/folder", "C:/Desk/empty"), 145U);
    EXPECT_EQ(told(Kind::plantJunction, "C:/Desk/empty", "C:/Desk/folder"), 0U);
    EXPECT_EQ(told(Kind::plantFileLink, "C:/Desk/other", "C:/Desk/plain"), 32U);
    EXPECT_EQ(told(Kind::enterFolder, "C:/Desk/plain"), 267U);
    EXPECT_EQ(told(Kind::startProgram, "C:/Desk/plain"), 193U);
    EXPECT_EQ(told(Kind::startProgram, "C:/Desk/program.exe"), 0U);
    EXPECT_EQ(told(Kind::endPrograms, "C:/Desk/program.exe"), 2U);
}

TEST(Intrusions, HaveTheirEffect) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    EXPECT_EQ(actOn(machine, Kind::create, "C:/Desk/new", "new"), 0U);
    EXPECT_EQ(contentAt(files, "new"), "new");
    EXPECT_EQ(actOn(machine, Kind::setReadOnly, "C:/Desk/plain"), 0U);
    EXPECT_EQ(files.deleteFile("plain"), 5U);
    EXPECT_EQ(actOn(machine, Kind::clearReadOnly, "C:/Desk/plain"), 0U);
    EXPECT_EQ(files.deleteFile("plain"), 0U);
    EXPECT_EQ(actOn(machine, Kind::plantJunction, "C:/Desk/plain", "C:/Desk/folder"), 0U);
    EXPECT_EQ(contentAt(files, "plain/inner"), "inner");
    EXPECT_EQ(actOn(machine, Kind::plantFolderLink, "C:/Desk/empty", "C:/Desk/folder"), 0U);
    EXPECT_EQ(contentAt(files, "empty/inner"), "inner");
    EXPECT_EQ(actOn(machine, Kind::plantFileLink, "C:/Desk/other", "C:/Desk/new"), 0U);
    EXPECT_EQ(files.find("other")->reparseTag, tag::symbolicLink);
    EXPECT_EQ(actOn(machine, Kind::enterFolder, "C:/Desk/folder"), 0U);
    EXPECT_EQ(files.moveFile("folder", "moved"), 32U);
    EXPECT_EQ(actOn(machine, Kind::leaveFolder, ""), 0U);
    EXPECT_EQ(files.moveFile("folder", "moved"), 0U);
    EXPECT_EQ(actOn(machine, Kind::fillDisk, "C:/"), 0U);
    EXPECT_EQ(files.createFolder("full"), 112U);
    EXPECT_EQ(actOn(machine, Kind::freeDisk, "C:/"), 0U);
    EXPECT_EQ(files.createFolder("full"), 0U);
    EXPECT_EQ(actOn(machine, Kind::takeVolumeAway, "D:/"), 0U);
    EXPECT_EQ(files.createFolder("D:/new"), 3U);
    EXPECT_EQ(actOn(machine, Kind::bringVolumeBack, "D:/"), 0U);
    EXPECT_EQ(files.createFolder("D:/new"), 0U);
}

TEST(Intrusions, HoldWhatTheyOpenUntilTheyLetGo) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    for (const std::string path : {"C:/Desk/plain", "C:/Desk/other", "C:/Desk/folder/inner"})
        EXPECT_EQ(actOn(machine, Kind::open, path), 0U);
    EXPECT_EQ(files.deleteFile("plain"), 32U);
    EXPECT_EQ(actOn(machine, Kind::release, "C:/Desk/plain"), 0U);
    EXPECT_EQ(files.deleteFile("plain"), 0U);
    EXPECT_EQ(actOn(machine, Kind::release, "C:/Desk/folder"), 0U);
    EXPECT_EQ(files.deleteFile("folder/inner"), 0U);
    EXPECT_EQ(files.deleteFile("other"), 32U);
    EXPECT_EQ(actOn(machine, Kind::release, ""), 0U);
    EXPECT_EQ(files.deleteFile("other"), 0U);
    EXPECT_EQ(actOn(machine, Kind::map, "C:/Desk/hidden"), 0U);
    EXPECT_EQ(files.deleteFile("hidden"), 5U);
    EXPECT_EQ(actOn(machine, Kind::unmap, "C:/Desk/hidden"), 0U);
    EXPECT_EQ(files.deleteFile("hidden"), 0U);
}

TEST(Intrusions, StartAndEndPrograms) {
    Machine machine = desk();
    EXPECT_EQ(actOn(machine, Kind::startProgram, "C:/Desk/program.exe"), 0U);
    EXPECT_EQ(machine.files.deleteFile("program.exe"), 5U);
    EXPECT_EQ(actOn(machine, Kind::endPrograms, "C:/Desk/PROGRAM.exe"), 0U);
    EXPECT_EQ(machine.files.deleteFile("program.exe"), 0U);
}

TEST(Intrusions, OfOneCopyOfAMachineLeaveTheOtherAlone) {
    const Machine machine = desk();
    Machine copy = machine;
    EXPECT_EQ(actOn(copy, Kind::create, "C:/Desk/plain", "changed"), 0U);
    EXPECT_EQ(actOn(copy, Kind::remove, "C:/Desk/other"), 0U);
    EXPECT_EQ(contentAt(machine.files, "plain"), "plain");
    EXPECT_EQ(contentAt(machine.files, "other"), "other");
    EXPECT_EQ(machine.files.entries(), desk().files.entries());
    EXPECT_NE(machine.files.entries(), copy.files.entries());
}

TEST(Intrusions, AreDescribedInWords) {
    EXPECT_EQ(describe(Intrusion{.kind = Kind::rename, .path = "C:/a", .second = "C:/b"}),
              "another program renames C:/a -> C:/b");
    EXPECT_EQ(describe(Intrusion{.kind = Kind::open, .path = "C:/a", .sharing = access::read | access::remove}),
              "another program opens C:/a for read, sharing read|delete");
    EXPECT_EQ(describe(Intrusion{.kind = Kind::fillDisk, .path = "C:/", .number = 7}),
              "another program fills the disk of C:/ (7)");
}

}  // namespace
}  // namespace vorthmere::update::simulation
