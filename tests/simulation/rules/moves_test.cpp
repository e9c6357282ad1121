#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

TEST(SimulatedMoves, TellWhatStandsAgainstThem) {
    expectAll({
        {"to a new name", [](FileSystem& f) { return f.moveFile("plain", "new"); }, 0},
        {"onto a file", [](FileSystem& f) { return f.moveFile("plain", "other"); }, 0},
        {"onto a hidden file", [](FileSystem& f) { return f.moveFile("plain", "hidden"); }, 0},
        {"onto a file link", [](FileSystem& f) { return f.moveFile("plain", "filelink"); }, 0},
        {"a read-only file", [](FileSystem& f) { return f.moveFile("readonly", "new"); }, 0},
        {"a junction", [](FileSystem& f) { return f.moveFile("junction", "new"); }, 0},
        {"a folder", [](FileSystem& f) { return f.moveFile("folder", "new"); }, 0},
        {"onto itself", [](FileSystem& f) { return f.moveFile("plain", "plain"); }, 0},
        {"a folder onto a file", [](FileSystem& f) { return f.moveFile("folder", "plain"); }, 0},
        {"missing", [](FileSystem& f) { return f.moveFile("none", "new"); }, 2},
        {"missing parent", [](FileSystem& f) { return f.moveFile("none/none", "new"); }, 3},
        {"missing target parent", [](FileSystem& f) { return f.moveFile("plain", "none/new"); }, 3},
        {"a file as target parent", [](FileSystem& f) { return f.moveFile("plain", "other/new"); }, 3},
        {"both missing", [](FileSystem& f) { return f.moveFile("none", "none/new"); }, 2},
        {"onto a read-only file", [](FileSystem& f) { return f.moveFile("plain", "readonly"); }, 5},
        {"onto a folder", [](FileSystem& f) { return f.moveFile("plain", "empty"); }, 5},
        {"onto a junction", [](FileSystem& f) { return f.moveFile("plain", "junction"); }, 5},
        {"a folder onto a folder", [](FileSystem& f) { return f.moveFile("folder", "empty"); }, 5},
        {"a folder into itself", [](FileSystem& f) { return f.moveFile("folder", "folder/new"); }, 32},
        {"a root", [](FileSystem& f) { return f.moveFile("D:/", "new"); }, 5},
        {"onto a root", [](FileSystem& f) { return f.moveFile("plain", "C:/"); }, 5},
        {"to a bad name", [](FileSystem& f) { return f.moveFile("plain", "a|b"); }, 123},
        {"to a name with a separator", [](FileSystem& f) { return f.moveFile("plain", "new/"); }, 123},
        {"a refusing file",
         [](FileSystem& f) {
             f.refuse("plain", 5);
             return f.moveFile("plain", "new");
         },
         5},
        {"onto a refusing file",
         [](FileSystem& f) {
             f.refuse("other", 5);
             return f.moveFile("plain", "other");
         },
         5},
        {"into a refusing folder",
         [](FileSystem& f) {
             f.refuse("empty", 5);
             return f.moveFile("plain", "empty/new");
         },
         5},
        {"a folder to another volume", [](FileSystem& f) { return f.moveFile("folder", "D:/new"); }, 17},
        {"write-protected",
         [](FileSystem& f) {
             f.volumeOf("C:/").isWriteProtected = true;
             return f.moveFile("plain", "new");
         },
         19},
        {"a full disk",
         [](FileSystem& f) {
             f.volumeOf("C:/").freeBytes = 0;
             return f.moveFile("plain", "other");
         },
         0},
    });
}

TEST(SimulatedMoves, KeepContentAndAttributesAndTakeTheSpellingOfTheCall) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    EXPECT_EQ(files.moveFile("readonly", "OTHER"), error::none);
    EXPECT_EQ(spellingOf(files, "other"), "C:/Desk/OTHER");
    EXPECT_EQ(contentAt(files, "other"), "read-only");
    EXPECT_EQ(files.find("other")->attributes, attribute::archive | attribute::readOnly);
    EXPECT_EQ(spellingOf(files, "readonly"), "(none)");
    EXPECT_EQ(files.moveFile("plain", "PLAIN"), error::none);
    EXPECT_EQ(spellingOf(files, "plain"), "C:/Desk/PLAIN");
    EXPECT_EQ(files.moveFile("folder", "Folder"), error::none);
    EXPECT_EQ(spellingOf(files, "folder/inner"), "C:/Desk/Folder/inner");
}

TEST(SimulatedMoves, ReplaceALinkAndNotWhatItLeadsTo) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    EXPECT_EQ(files.moveFile("other", "filelink"), error::none);
    EXPECT_EQ(contentAt(files, "filelink"), "other");
    EXPECT_EQ(files.find("filelink")->reparseTag, tag::none);
    EXPECT_EQ(contentAt(files, "plain"), "plain");
    EXPECT_EQ(files.moveFile("junction", "moved"), error::none);
    EXPECT_EQ(files.find("moved")->linkTarget, "C:/Desk/folder");
    EXPECT_EQ(contentAt(files, "folder/inner"), "inner");
}

TEST(SimulatedMoves, ToAnotherVolumeCopyAndThenRemove) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    EXPECT_EQ(files.moveFile("plain", "D:/stick/plain"), error::none);
    EXPECT_EQ(contentAt(files, "D:/stick/plain"), "plain");
    EXPECT_EQ(spellingOf(files, "plain"), "(none)");
    // Only the removal fails: both are there.
    EXPECT_EQ(files.moveFile("readonly", "D:/stick/readonly"), error::none);
    EXPECT_EQ(contentAt(files, "readonly"), "read-only");
    EXPECT_EQ(contentAt(files, "D:/stick/readonly"), "read-only");
    EXPECT_EQ(files.moveFile("other", "D:/stick/readonly"), error::accessDenied);
    files.volumeOf("D:/").freeBytes = Disk::kEntryBytes;
    EXPECT_EQ(files.moveFile("other", "D:/stick/other"), error::diskFull);
    EXPECT_EQ(contentAt(files, "other"), "other");
    EXPECT_EQ(spellingOf(files, "D:/stick/other"), "(none)");
}

}  // namespace
}  // namespace vorthmere::update::simulation
