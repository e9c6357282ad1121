#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

/// The error of asking for an entry's attributes.
Error ask(const FileSystem& files, std::string_view path) {
    std::uint32_t attributes = 0;
    return files.entryAttributes(path, attributes);
}

std::uint32_t attributesOf(const FileSystem& files, std::string_view path) {
    std::uint32_t attributes = 0;
    EXPECT_EQ(files.entryAttributes(path, attributes), error::none) << path;
    return attributes;
}

Error askTarget(const FileSystem& files, std::string_view path) {
    Facts facts;
    return files.targetFacts(path, facts);
}

Error list(const FileSystem& files, std::string_view path) {
    std::vector<Listed> entries;
    return files.listFolder(path, entries);
}

std::vector<std::string> namesIn(const FileSystem& files, std::string_view path) {
    std::vector<Listed> entries;
    EXPECT_EQ(files.listFolder(path, entries), error::none);
    std::vector<std::string> names;
    for (const Listed& entry : entries)
        names.push_back(entry.name);
    return names;
}

TEST(SimulatedLookup, TellsWhatIsMissing) {
    expectAll({
        {"a file", [](FileSystem& f) { return ask(f, "C:/Desk/plain"); }, 0},
        {"another case", [](FileSystem& f) { return ask(f, "c:/DESK/Plain"); }, 0},
        {"backslashes", [](FileSystem& f) { return ask(f, "C:\\Desk\\folder\\inner"); }, 0},
        {"relative", [](FileSystem& f) { return ask(f, "folder/inner"); }, 0},
        {"a root", [](FileSystem& f) { return ask(f, "C:/"); }, 0},
        {"a folder with a separator", [](FileSystem& f) { return ask(f, "C:/Desk/folder/"); }, 0},
        {"a file with a separator", [](FileSystem& f) { return ask(f, "C:/Desk/plain/"); }, 123},
        {"no such file", [](FileSystem& f) { return ask(f, "C:/Desk/none"); }, 2},
        {"no such folder", [](FileSystem& f) { return ask(f, "C:/Desk/none/none"); }, 3},
        {"a file as a folder", [](FileSystem& f) { return ask(f, "C:/Desk/plain/none"); }, 3},
        {"no such drive", [](FileSystem& f) { return ask(f, "E:/none"); }, 3},
        {"no path", [](FileSystem& f) { return ask(f, ""); }, 3},
        {"a bad name", [](FileSystem& f) { return ask(f, "C:/Desk/a?"); }, 123},
        {"a bad folder's name", [](FileSystem& f) { return ask(f, "C:/no|ne/none"); }, 123},
        {"a stream", [](FileSystem& f) { return ask(f, "C:/Desk/plain:b"); }, 123},
        {"dots at the end", [](FileSystem& f) { return ask(f, "C:/Desk/plain. ."); }, 0},
        {"blanks inside", [](FileSystem& f) { return ask(f, "C:/Desk /plain"); }, 3},
        {"dots at the end, extended", [](FileSystem& f) { return ask(f, "\\\\?\\C:\\Desk\\plain."); }, 2},
    });
}

TEST(SimulatedLookup, DescribesLinksThemselvesAndTheirTargetsOnRequest) {
    Machine machine = desk();
    const FileSystem& files = machine.files;
    EXPECT_EQ(attributesOf(files, "junction"), attribute::folder | attribute::reparsePoint);
    EXPECT_EQ(attributesOf(files, "filelink"), attribute::archive | attribute::reparsePoint);
    EXPECT_EQ(attributesOf(files, "danglingjunction"), attribute::folder | attribute::reparsePoint);
    EXPECT_EQ(attributesOf(files, "loop"), attribute::archive | attribute::reparsePoint);
    EXPECT_EQ(attributesOf(files, "cloud"), attribute::archive | attribute::reparsePoint);
    EXPECT_EQ(attributesOf(files, "junction/inner"), attribute::archive);
    Facts facts;
    EXPECT_EQ(files.targetFacts("filelink", facts), error::none);
    EXPECT_EQ(facts.attributes, attribute::archive);
    EXPECT_EQ(facts.size, 5U);
    EXPECT_EQ(files.entryFacts("filelink", facts), error::none);
    EXPECT_EQ(facts.size, 0U);
    EXPECT_EQ(files.targetFacts("cloud", facts), error::none);
    EXPECT_EQ(facts.size, 5U);
    EXPECT_EQ(files.targetFacts("junction", facts), error::none);
    EXPECT_EQ(facts.attributes, attribute::folder);
    expectAll({
        {"dangling", [](FileSystem& f) { return askTarget(f, "dangling"); }, 2},
        {"dangling junction", [](FileSystem& f) { return askTarget(f, "danglingjunction"); }, 3},
        {"below a dangling junction", [](FileSystem& f) { return ask(f, "danglingjunction/a"); }, 3},
        {"loop", [](FileSystem& f) { return askTarget(f, "loop"); }, 1921},
        {"alias", [](FileSystem& f) { return askTarget(f, "alias"); }, 1920},
        {"alias itself", [](FileSystem& f) { return ask(f, "alias"); }, 0},
    });
}

TEST(SimulatedLookup, ListsAFolderByNameWithoutRegardToCase) {
    Machine machine = desk();
    machine.files.putFile("C:/Desk/folder/Zeta", contentOf(""));
    machine.files.putFile("C:/Desk/folder/alpha", contentOf(""));
    EXPECT_THAT(namesIn(machine.files, "junction"), ElementsAre("alpha", "inner", "Zeta"));
    machine.files.settings.listingOrder = FileSystemSettings::ListingOrder::reversed;
    EXPECT_THAT(namesIn(machine.files, "folder"), ElementsAre("Zeta", "inner", "alpha"));
    expectAll({
        {"missing", [](FileSystem& f) { return list(f, "none"); }, 3},
        {"below missing", [](FileSystem& f) { return list(f, "none/none"); }, 3},
        {"a file", [](FileSystem& f) { return list(f, "plain"); }, 267},
        {"a file with a separator", [](FileSystem& f) { return list(f, "plain/"); }, 267},
        {"an empty folder", [](FileSystem& f) { return list(f, "empty"); }, 0},
        {"an empty root",
         [](FileSystem& f) {
             f.erase("D:/stick");
             return list(f, "D:/");
         },
         2},
        {"a bad name", [](FileSystem& f) { return list(f, "a*"); }, 123},
        {"a dangling junction", [](FileSystem& f) { return list(f, "danglingjunction"); }, 3},
        {"a loop", [](FileSystem& f) { return list(f, "loop"); }, 1921},
        {"a refusing one",
         [](FileSystem& f) {
             f.refuse("folder", 5);
             return list(f, "folder");
         },
         5},
    });
}

TEST(SimulatedLookup, NamesWhatIsOpenWithAllLinksResolvedAndTheKeptSpelling) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    HandleId file = 0;
    std::string path;
    ASSERT_EQ(files.openForItsName("c:/desk/JUNCTION/Inner", file), error::none);
    EXPECT_EQ(files.finalPath(file, path), error::none);
    EXPECT_EQ(path, "C:/Desk/folder/inner");
    files.volumeOf("C:/").finalName = "//server/share";
    EXPECT_EQ(files.finalPath(file, path), error::none);
    EXPECT_EQ(path, "//server/share/Desk/folder/inner");
    files.volumeOf("C:/").finalNameError = 1;
    EXPECT_EQ(files.finalPath(file, path), error::invalidFunction);
    EXPECT_EQ(files.finalPath(file + 4, path), error::invalidHandle);
    EXPECT_EQ(files.close(file), error::none);
    EXPECT_EQ(files.openForItsName("none", file), error::fileNotFound);
    EXPECT_EQ(files.openForItsName("dangling", file), error::fileNotFound);
    EXPECT_EQ(files.openForItsName("loop", file), error::linkCannotBeResolved);
}

TEST(SimulatedLookup, MakesFullPathsWithoutAskingTheDisk) {
    Machine machine = desk();
    std::string full;
    EXPECT_EQ(machine.files.fullPath("x/../?y", full), error::none);
    EXPECT_EQ(full, "C:/Desk/?y");
    EXPECT_EQ(machine.files.fullPath("E:\\none\\", full), error::none);
    EXPECT_EQ(full, "E:/none/");
    EXPECT_EQ(machine.files.fullPath("", full), error::pathNotFound);
}

TEST(SimulatedLookup, RefusesPathsThatAreTooLong) {
    const auto tooLong = [](FileSystem& files, std::size_t length) {
        files.settings.longestPath = 259;
        files.settings.longestFolderToCreate = 247;
        std::string path = "C:/Desk/folder/";
        while (path.size() < length)
            path += path.size() % 100 == 99 ? '/' : 'x';
        return path;
    };
    // The file is there: only its path's length can be wrong.
    const auto askForAFile = [&](FileSystem& files, std::size_t length, std::string_view prefix) {
        const std::string name(length - std::string_view("C:/Desk/").size(), 'x');
        files.putFile("C:/Desk/" + name, contentOf(""));
        tooLong(files, 0);
        return ask(files, std::string(prefix) + name);
    };
    expectAll({
        {"259", [&](FileSystem& f) { return askForAFile(f, 259, "C:/Desk/"); }, 0},
        {"260", [&](FileSystem& f) { return askForAFile(f, 260, "C:/Desk/"); }, 3},
        {"260, extended", [&](FileSystem& f) { return askForAFile(f, 260, "\\\\?\\C:\\Desk\\"); }, 0},
        {"a long one, extended",
         [&](FileSystem& f) {
             f.putFile("C:/Desk/" + std::string(200, 'x') + "/" + std::string(200, 'y'), contentOf(""));
             tooLong(f, 0);
             return ask(f, "\\\\?\\C:\\Desk\\" + std::string(200, 'x') + "\\" + std::string(200, 'y'));
         },
         0},
        {"250 to create, extended",
         [&](FileSystem& f) {
             tooLong(f, 0);
             return f.createFolder("\\\\?\\C:\\Desk\\" + std::string(242, 'x'));
         },
         0},
        {"a short one with dots in it",
         [&](FileSystem& f) {
             tooLong(f, 0);
             std::string path = "C:/Desk";
             while (path.size() < 300)
                 path += "/.";
             return ask(f, path + "/plain");
         },
         0},
        {"248 to create", [&](FileSystem& f) { return f.createFolder(tooLong(f, 248)); }, 206},
        {"300 to create", [&](FileSystem& f) { return f.createFolder(tooLong(f, 300)); }, 206},
        {"247 to create", [&](FileSystem& f) { return f.createFolder(tooLong(f, 247)); }, 3},
        {"247 to create, its parent there",
         [&](FileSystem& f) {
             tooLong(f, 0);
             return f.createFolder("C:/Desk/" + std::string(239, 'x'));
         },
         0},
        {"258 to list",
         [&](FileSystem& f) {
             f.putFolder("C:/Desk/" + std::string(250, 'x'));
             tooLong(f, 0);
             return list(f, "C:/Desk/" + std::string(250, 'x'));
         },
         3},
        {"257 to list",
         [&](FileSystem& f) {
             f.putFolder("C:/Desk/" + std::string(249, 'x'));
             tooLong(f, 0);
             return list(f, "C:/Desk/" + std::string(249, 'x'));
         },
         0},
    });
}

TEST(SimulatedLookup, HidesAFileBehindADeviceOfItsName) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    HandleId file = 0;
    ASSERT_EQ(files.open("\\\\?\\C:\\Desk\\nul.txt", access::write, access::all, true, file), error::none);
    ASSERT_EQ(files.write(file, "bytes"), error::none);
    ASSERT_EQ(files.close(file), error::none);
    ASSERT_EQ(files.createToWrite("nul.txt", file), error::none);
    EXPECT_EQ(files.write(file, "other"), error::none);
    EXPECT_EQ(contentAt(files, "\\\\?\\C:\\Desk\\nul.txt"), "bytes");
    EXPECT_EQ(files.deleteFile("nul.txt"), error::invalidFunction);
    EXPECT_EQ(files.deleteFile("\\\\?\\C:\\Desk\\nul.txt"), error::none);
}

TEST(SimulatedLookup, FindsDevicesInEveryFolder) {
    const auto facts = [](FileSystem& f, std::string_view path) {
        Facts ignored;
        return f.entryFacts(path, ignored);
    };
    const auto reads = [](FileSystem& f, std::string_view path) {
        HandleId file = 0;
        return f.openToRead(path, file);
    };
    expectAll({
        {"attributes", [](FileSystem& f) { return ask(f, "C:/Desk/nul.txt"); }, 0},
        {"facts", [&](FileSystem& f) { return facts(f, "C:/Desk/NUL"); }, 87},
        {"open", [&](FileSystem& f) { return reads(f, "C:/Desk/nul"); }, 0},
        {"in a missing folder", [](FileSystem& f) { return ask(f, "C:/none/nul"); }, 3},
        {"as a folder", [](FileSystem& f) { return ask(f, "C:/Desk/nul/x"); }, 3},
        {"create folder", [](FileSystem& f) { return f.createFolder("nul"); }, 267},
        {"delete", [](FileSystem& f) { return f.deleteFile("nul"); }, 1},
        {"move onto", [](FileSystem& f) { return f.moveFile("plain", "nul"); }, 5},
        {"copy into", [](FileSystem& f) { return f.copyFile("plain", "nul", true); }, 0},
        {"extended", [](FileSystem& f) { return ask(f, "\\\\?\\C:\\Desk\\nul"); }, 2},
        {"Windows 11: with an extension",
         [](FileSystem& f) {
             f.settings.deviceNamesWithExtension = false;
             return ask(f, "C:/Desk/nul.txt");
         },
         2},
        {"Windows 11: the bare name",
         [](FileSystem& f) {
             f.settings.deviceNamesWithExtension = false;
             return ask(f, "nul");
         },
         0},
    });
    expectAll(
        {
            {"share", [](FileSystem& f) { return ask(f, "C:/Desk/nul"); }, 5},
            {"share, facts", [&](FileSystem& f) { return facts(f, "C:/Desk/nul.txt"); }, 5},
            {"share, open", [&](FileSystem& f) { return reads(f, "C:/Desk/nul"); }, 5},
            {"share, create", [](FileSystem& f) { return f.createFolder("nul"); }, 5},
            {"share, delete", [](FileSystem& f) { return f.deleteFile("nul"); }, 5},
            {"share, move onto", [](FileSystem& f) { return f.moveFile("plain", "nul"); }, 5},
            {"share, copy into", [](FileSystem& f) { return f.copyFile("plain", "nul", true); }, 5},
        },
        Profile::networkShare);
}

}  // namespace
}  // namespace vorthmere::update::simulation
