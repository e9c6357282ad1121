#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

TEST(SimulatedCopies, TellWhatStandsAgainstThem) {
    expectAll({
        {"to a new name", [](FileSystem& f) { return f.copyFile("plain", "new", false); }, 0},
        {"onto a file", [](FileSystem& f) { return f.copyFile("plain", "other", true); }, 0},
        {"a link's target", [](FileSystem& f) { return f.copyFile("filelink", "new", false); }, 0},
        {"into a dangling link", [](FileSystem& f) { return f.copyFile("plain", "dangling", false); }, 0},
        {"to another volume", [](FileSystem& f) { return f.copyFile("plain", "D:/stick/new", false); }, 0},
        {"a cloud file", [](FileSystem& f) { return f.copyFile("cloud", "new", false); }, 0},
        {"missing", [](FileSystem& f) { return f.copyFile("none", "new", true); }, 2},
        {"missing parent", [](FileSystem& f) { return f.copyFile("none/none", "new", true); }, 3},
        {"a dangling link", [](FileSystem& f) { return f.copyFile("dangling", "new", true); }, 2},
        {"a loop", [](FileSystem& f) { return f.copyFile("loop", "new", true); }, 1921},
        {"an alias", [](FileSystem& f) { return f.copyFile("alias", "new", true); }, 1920},
        {"missing target parent", [](FileSystem& f) { return f.copyFile("plain", "none/new", true); }, 3},
        {"a folder", [](FileSystem& f) { return f.copyFile("folder", "new", true); }, 5},
        {"onto a folder", [](FileSystem& f) { return f.copyFile("plain", "empty", true); }, 5},
        {"onto a folder, not replacing", [](FileSystem& f) { return f.copyFile("plain", "empty", false); }, 5},
        {"onto itself", [](FileSystem& f) { return f.copyFile("plain", "PLAIN", true); }, 32},
        {"onto itself through a link", [](FileSystem& f) { return f.copyFile("plain", "filelink", true); }, 32},
        {"exists", [](FileSystem& f) { return f.copyFile("plain", "other", false); }, 80},
        {"exists behind a link", [](FileSystem& f) { return f.copyFile("other", "filelink", false); }, 80},
        {"onto a read-only file", [](FileSystem& f) { return f.copyFile("plain", "readonly", true); }, 5},
        {"onto a hidden file", [](FileSystem& f) { return f.copyFile("plain", "hidden", true); }, 5},
        {"onto a system file", [](FileSystem& f) { return f.copyFile("plain", "system", true); }, 5},
        {"to a bad name", [](FileSystem& f) { return f.copyFile("plain", "a<", true); }, 123},
        {"without room for a name",
         [](FileSystem& f) {
             f.volumeOf("C:/").freeBytes = 0;
             return f.copyFile("plain", "new", true);
         },
         112},
        {"without room for the bytes",
         [](FileSystem& f) {
             f.volumeOf("C:/").freeBytes = Disk::kEntryBytes + 4;
             return f.copyFile("plain", "new", true);
         },
         112},
        {"with room for the bytes",
         [](FileSystem& f) {
             f.volumeOf("C:/").freeBytes = Disk::kEntryBytes + 5;
             return f.copyFile("plain", "new", true);
         },
         0},
    });
}

TEST(SimulatedCopies, TakeAttributesAlongAndKeepTheTargetsSpelling) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    EXPECT_EQ(files.copyFile("readonly", "OTHER", true), error::none);
    EXPECT_EQ(spellingOf(files, "other"), "C:/Desk/other");
    EXPECT_EQ(contentAt(files, "other"), "read-only");
    EXPECT_EQ(files.find("other")->attributes, attribute::archive | attribute::readOnly);
    EXPECT_EQ(contentAt(files, "readonly"), "read-only");
    EXPECT_EQ(files.setAttributes("plain", 0), error::none);
    EXPECT_EQ(files.copyFile("plain", "archived", true), error::none);
    EXPECT_EQ(files.find("archived")->attributes, attribute::archive);
    EXPECT_EQ(files.copyFile("cloud", "new", true), error::none);
    EXPECT_EQ(files.find("new")->attributes, attribute::archive);
    EXPECT_EQ(files.copyFile("plain", "dangling", false), error::none);
    EXPECT_EQ(contentAt(files, "nowhere"), "plain");
}

TEST(SimulatedCopies, LoseTheOlderFileWhenTheyFailMidway) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    files.putFile("C:/Desk/large", contentOf(std::string(100, 'x')));
    files.volumeOf("C:/").freeBytes = 50;
    EXPECT_EQ(files.copyFile("large", "other", true), error::diskFull);
    EXPECT_EQ(spellingOf(files, "other"), "(none)");
    files.volumeOf("C:/").freeBytes = 50;
    held(machine, "plain", access::read, access::read | access::write);
    EXPECT_EQ(files.copyFile("large", "plain", true), error::diskFull);
    EXPECT_EQ(contentAt(files, "plain"), "");
}

TEST(SimulatedCopies, LeaveZerosWhenTheyAreCutMidway) {
    Machine machine = desk();
    EXPECT_EQ(machine.files.copyFile("plain", "new", true, Extent::part), error::none);
    EXPECT_EQ(contentAt(machine.files, "new"), std::string("pl\0\0\0", 5));
}

}  // namespace
}  // namespace vorthmere::update::simulation
