#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

TEST(SimulatedChanges, CreateAFolder) {
    expectAll({
        {"new", [](FileSystem& f) { return f.createFolder("new"); }, 0},
        {"new, with a separator", [](FileSystem& f) { return f.createFolder("new/"); }, 0},
        {"through a junction", [](FileSystem& f) { return f.createFolder("junction/new"); }, 0},
        {"a folder is there", [](FileSystem& f) { return f.createFolder("FOLDER"); }, 183},
        {"a file is there", [](FileSystem& f) { return f.createFolder("plain"); }, 183},
        {"a link is there", [](FileSystem& f) { return f.createFolder("dangling"); }, 183},
        {"no parent", [](FileSystem& f) { return f.createFolder("none/new"); }, 3},
        {"a file as parent", [](FileSystem& f) { return f.createFolder("plain/new"); }, 3},
        {"a dangling parent", [](FileSystem& f) { return f.createFolder("danglingjunction/new"); }, 3},
        {"a root", [](FileSystem& f) { return f.createFolder("C:/"); }, 5},
        {"no path", [](FileSystem& f) { return f.createFolder(""); }, 3},
        {"a bad name", [](FileSystem& f) { return f.createFolder("a*"); }, 123},
        {"a full disk",
         [](FileSystem& f) {
             f.volumeOf("C:/").freeBytes = 0;
             return f.createFolder("new");
         },
         112},
        {"a refusing parent",
         [](FileSystem& f) {
             f.refuse("empty", 5);
             return f.createFolder("empty/new");
         },
         5},
        {"a write-protected volume",
         [](FileSystem& f) {
             f.volumeOf("D:/").isWriteProtected = true;
             return f.createFolder("D:/new");
         },
         19},
    });
    Machine machine = desk();
    EXPECT_EQ(machine.files.createFolder("junction/New"), error::none);
    EXPECT_EQ(spellingOf(machine.files, "folder/new"), "C:/Desk/folder/New");
}

TEST(SimulatedChanges, RemoveAnEmptyFolder) {
    HandleId file = 0;
    expectAll({
        {"empty", [](FileSystem& f) { return f.removeEmptyFolder("empty"); }, 0},
        {"a junction", [](FileSystem& f) { return f.removeEmptyFolder("junction"); }, 0},
        {"a folder link", [](FileSystem& f) { return f.removeEmptyFolder("folderlink"); }, 0},
        {"a dangling junction", [](FileSystem& f) { return f.removeEmptyFolder("danglingjunction"); }, 0},
        {"not empty", [](FileSystem& f) { return f.removeEmptyFolder("folder"); }, 145},
        {"read-only", [](FileSystem& f) { return f.removeEmptyFolder("kept"); }, 5},
        {"a file", [](FileSystem& f) { return f.removeEmptyFolder("plain"); }, 267},
        {"a file link", [](FileSystem& f) { return f.removeEmptyFolder("filelink"); }, 267},
        {"missing", [](FileSystem& f) { return f.removeEmptyFolder("none"); }, 2},
        {"missing parent", [](FileSystem& f) { return f.removeEmptyFolder("none/none"); }, 3},
        {"a root", [](FileSystem& f) { return f.removeEmptyFolder("D:/"); }, 32},
        {"a bad name", [](FileSystem& f) { return f.removeEmptyFolder("a?"); }, 123},
        {"held for attributes, POSIX",
         [&](FileSystem& f) {
             EXPECT_EQ(f.openForItsName("empty", file), error::none);
             return f.removeEmptyFolder("empty");
         },
         0},
    });
    Machine machine = desk();
    EXPECT_EQ(machine.files.removeEmptyFolder("junction"), error::none);
    EXPECT_EQ(contentAt(machine.files, "folder/inner"), "inner");
    EXPECT_EQ(machine.files.setAttributes("kept", 0), error::none);
    EXPECT_EQ(machine.files.removeEmptyFolder("kept"), error::none);
}

TEST(SimulatedChanges, DeleteAFile) {
    expectAll({
        {"a file", [](FileSystem& f) { return f.deleteFile("plain"); }, 0},
        {"another case", [](FileSystem& f) { return f.deleteFile("PLAIN"); }, 0},
        {"hidden", [](FileSystem& f) { return f.deleteFile("hidden"); }, 0},
        {"a file link", [](FileSystem& f) { return f.deleteFile("filelink"); }, 0},
        {"a dangling link", [](FileSystem& f) { return f.deleteFile("dangling"); }, 0},
        {"a loop", [](FileSystem& f) { return f.deleteFile("loop"); }, 0},
        {"read-only", [](FileSystem& f) { return f.deleteFile("readonly"); }, 5},
        {"a folder", [](FileSystem& f) { return f.deleteFile("empty"); }, 5},
        {"a folder link", [](FileSystem& f) { return f.deleteFile("folderlink"); }, 5},
        {"a junction", [](FileSystem& f) { return f.deleteFile("junction"); }, 5},
        {"missing", [](FileSystem& f) { return f.deleteFile("none"); }, 2},
        {"missing parent", [](FileSystem& f) { return f.deleteFile("none/none"); }, 3},
        {"a file as parent", [](FileSystem& f) { return f.deleteFile("plain/none"); }, 3},
        {"with a separator", [](FileSystem& f) { return f.deleteFile("plain/"); }, 123},
        {"refusing",
         [](FileSystem& f) {
             f.refuse("plain", 5);
             return f.deleteFile("plain");
         },
         5},
        {"write-protected",
         [](FileSystem& f) {
             f.volumeOf("C:/").isWriteProtected = true;
             return f.deleteFile("plain");
         },
         19},
    });
    Machine machine = desk();
    EXPECT_EQ(machine.files.deleteFile("filelink"), error::none);
    EXPECT_EQ(contentAt(machine.files, "plain"), "plain");
    EXPECT_EQ(spellingOf(machine.files, "filelink"), "(none)");
}

TEST(SimulatedChanges, SetAttributes) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    EXPECT_EQ(files.setAttributes("junction", attribute::readOnly), error::none);
    EXPECT_EQ(files.find("junction")->attributes, attribute::readOnly | attribute::folder | attribute::reparsePoint);
    EXPECT_EQ(files.find("folder")->attributes, attribute::folder);
    EXPECT_EQ(files.setAttributes("readonly", attribute::normal), error::none);
    EXPECT_EQ(files.find("readonly")->attributes, 0U);
    EXPECT_EQ(files.setAttributes("none", 0), error::fileNotFound);
    EXPECT_EQ(files.setAttributes("none/none", 0), error::pathNotFound);
}

TEST(SimulatedChanges, PlantALink) {
    expectAll({
        {"in an empty folder's place",
         [](FileSystem& f) { return f.createLink("empty", tag::junction, "C:/Desk/folder", true); }, 0},
        {"in a full folder's place",
         [](FileSystem& f) { return f.createLink("folder", tag::junction, "C:/Desk/empty", true); }, 145},
        {"in a file's place", [](FileSystem& f) { return f.createLink("plain", tag::junction, "C:/Desk/empty", true); },
         183},
        {"without a parent", [](FileSystem& f) { return f.createLink("none/link", tag::symbolicLink, "plain", false); },
         3},
    });
}

}  // namespace
}  // namespace vorthmere::update::simulation
