#include "tests/simulation/archive_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::HasSubstr;

constexpr std::string_view kTool = "C:/Windows/System32/tar.exe";
using Kind = PackagedEntry::Kind;

/// One run of the tool as a program sees it.
struct ToolRun {
    Error startError = error::none;
    std::string output;
    std::uint32_t exitCode = 0;
};

struct Started {
    ProcessId id = 0;
    HandleId handle = 0;
    HandleId readEnd = 0;
};

Started startTool(Machine& machine, const std::string& arguments) {
    Started started;
    HandleId writeEnd = 0;
    EXPECT_EQ(machine.processes.openPipe(started.readEnd, writeEnd), 0U);
    const Error error = machine.processes.start(machine.files, kTool, "\"tar.exe\" " + arguments, "C:/Desk/empty",
                                                writeEnd, started.id);
    EXPECT_EQ(error, 0U);
    EXPECT_EQ(machine.processes.closePipe(writeEnd), 0U);
    started.handle = machine.processes.handleFor(started.id);
    return started;
}

ToolRun runTool(Machine& machine, const std::string& arguments) {
    const Started started = startTool(machine, arguments);
    ToolRun run;
    char buffer[100] = {};
    std::size_t count = 0;
    while (machine.processes.readPipe(machine.files, started.readEnd, buffer, 100, count) == 0)
        run.output.append(buffer, count);
    EXPECT_TRUE(machine.processes.waitForEnd(machine.files, started.handle, 0xFFFFFFFF));
    run.exitCode = machine.processes.exitCodeOf(started.handle, 99);
    return run;
}

Machine machineWith(const std::vector<PackagedEntry>& entries) {
    Machine machine = desk();
    machine.files.putFile("C:/Desk/package.zip", contentOf(packageOf(entries)));
    machine.files.putFolder("C:/Desk/staging");
    return machine;
}

ToolRun list(Machine& machine) {
    return runTool(machine, "\"-tf\" \"C:/Desk/package.zip\"");
}

ToolRun unpack(Machine& machine) {
    return runTool(machine, "\"-xf\" \"C:\\Desk\\package.zip\" \"-C\" \"C:/Desk/staging\"");
}

TEST(SimulatedArchiveTool, ReadsWhatAPackageWasMadeOf) {
    const std::vector<PackagedEntry> entries = {
        {"a b.pak", "bytes\nwith lines", Kind::file, true, false},
        {"folder/", "", Kind::folder, false, false},
        {"link", "a b.pak", Kind::fileLink, false, false},
        {"bad", "xx", Kind::file, false, true},
    };
    const std::string package = packageOf(entries);
    bool isWhole = false;
    const auto read = entriesOf(package, isWhole);
    ASSERT_TRUE(read);
    EXPECT_TRUE(isWhole);
    ASSERT_EQ(read->size(), entries.size());
    for (std::size_t n = 0; n < entries.size(); ++n) {
        EXPECT_EQ((*read)[n].name, entries[n].name);
        EXPECT_EQ((*read)[n].content, entries[n].content);
        EXPECT_EQ((*read)[n].kind, entries[n].kind);
        EXPECT_EQ((*read)[n].isReadOnly, entries[n].isReadOnly);
        EXPECT_EQ((*read)[n].isDamaged, entries[n].isDamaged);
    }
    EXPECT_FALSE(entriesOf("PK", isWhole));
    for (std::size_t cut = 13; cut < package.size(); ++cut) {
        EXPECT_TRUE(entriesOf(package.substr(0, cut), isWhole));
        EXPECT_FALSE(isWhole) << cut;
    }
}

TEST(SimulatedArchiveTool, ListsTheEntriesOfAPackage) {
    Machine machine = machineWith({{"a.pak", "a"}, {"data", "", Kind::folder}, {"data/b\\c", "b"}, {"x\ty", ""}});
    const ToolRun run = list(machine);
    EXPECT_EQ(run.output, "a.pak\r\ndata/\r\ndata/b\\\\c\r\nx\\011y\r\n");
    EXPECT_EQ(run.exitCode, 0U);
    machine = machineWith({{"\xC3\xA4", ""}, {"\xE4\xBD\xA0", ""}});
    const ToolRun foreign = list(machine);
    EXPECT_THAT(foreign.output, HasSubstr("\xE4\r\ntar: Pathname can't be converted"));
    EXPECT_EQ(foreign.exitCode, 1U);
}

TEST(SimulatedArchiveTool, RejectsWhatIsNoPackage) {
    Machine machine = machineWith({});
    EXPECT_EQ(list(machine).exitCode, 0U);
    EXPECT_EQ(list(machine).output, "");
    machine.files.putFile("C:/Desk/package.zip", contentOf("not a package"));
    EXPECT_EQ(list(machine).exitCode, 1U);
    machine.files.putFile("C:/Desk/package.zip", contentOf(packageOf({{"a", "a"}}).substr(0, 20)));
    EXPECT_EQ(list(machine).exitCode, 1U);
    machine.files.erase("C:/Desk/package.zip");
    EXPECT_EQ(list(machine).exitCode, 1U);
    EXPECT_EQ(runTool(machine, "\"-tf\"").exitCode, 1U);
}

TEST(SimulatedArchiveTool, UnpacksWithAllFolders) {
    Machine machine = machineWith({{"a.pak", "a"}, {"data/deep/b.pak", "b"}, {"empty/", "", Kind::folder}});
    machine.files.putFile("C:/Desk/staging/A.PAK", contentOf("in the way"));
    const ToolRun run = unpack(machine);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.exitCode, 0U);
    EXPECT_EQ(contentAt(machine.files, "staging/a.pak"), "a");
    EXPECT_EQ(spellingOf(machine.files, "staging/a.pak"), "C:/Desk/staging/a.pak");
    EXPECT_EQ(contentAt(machine.files, "staging/data/deep/b.pak"), "b");
    EXPECT_TRUE(machine.files.find("staging/empty")->isFolder());
    EXPECT_EQ(machine.files.moveFile("C:/Desk/staging", "C:/Desk/moved"), 0U);
}

struct Hostile {
    std::string what;
    PackagedEntry entry;
    std::uint32_t exitCode;
    std::string unpacked;
    std::string content;
};

TEST(SimulatedArchiveTool, TakesNamesAsTheRealOneDoes) {
    const std::vector<Hostile> cases = {
        {"climbs", {"../out", "x"}, 1, "out", "(none)"},
        {"climbs inside", {"a/../b", "x"}, 1, "staging/b", "(none)"},
        {"a drive", {"D:/out", "x"}, 0, "staging/out", "x"},
        {"a leading separator", {"/out", "x"}, 0, "staging/out", "x"},
        {"backslashes", {"data\\out", "x"}, 0, "staging/data/out", "x"},
        {"letters that no name may have", {"a?b*c", "x"}, 0, "staging/a_b_c", "x"},
        {"a stream", {"a/b:c", "x"}, 0, "staging/a/b_c", "x"},
        {"a trailing dot", {"out.", "x"}, 0, "\\\\?\\C:\\Desk\\staging\\out.", "x"},
        {"a device", {"NUL .txt", "x"}, 0, "\\\\?\\C:\\Desk\\staging\\NUL .txt", "x"},
        {"a long name", {std::string(240, 'x'), "x"}, 0, "\\\\?\\C:\\Desk\\staging\\" + std::string(240, 'x'), "x"},
        {"too long a name", {std::string(256, 'x'), "x"}, 1, "staging/x", "(none)"},
        {"a link", {"link", "C:/Desk/plain", Kind::fileLink}, 1, "staging/link", "(none)"},
        {"a folder link", {"link", "C:/Desk/folder", Kind::folderLink}, 1, "staging/link", "(none)"},
        {"a damaged file", {"bad", "1234", Kind::file, false, true}, 1, "staging/bad", "12"},
        {"a folder in the way", {"folder", "x"}, 1, "staging/folder", "(none)"},
        {"a read-only file in the way", {"kept", "x"}, 1, "staging/kept", "kept"},
        {"a file in the way of a folder", {"file/x", "x"}, 0, "staging/file/x", "x"},
        {"a junction in the way", {"junction/x", "x"}, 0, "folder/x", "x"},
        {"a symbolic link in the way", {"folderlink/x", "x"}, 1, "folder/x", "(none)"},
    };
    for (const Hostile& each : cases) {
        Machine machine = machineWith({each.entry, {"last", "last"}});
        machine.files.putFolder("C:/Desk/staging/folder");
        machine.files.putFile("C:/Desk/staging/file", contentOf("file"));
        machine.files.putFile("C:/Desk/staging/kept", contentOf("kept"), attribute::readOnly);
        machine.files.putReparsePoint("C:/Desk/staging/junction", tag::junction, "C:/Desk/folder", true);
        machine.files.putReparsePoint("C:/Desk/staging/folderlink", tag::symbolicLink, "C:/Desk/folder", true);
        machine.files.settings.longestPath = 259;
        const ToolRun run = unpack(machine);
        EXPECT_EQ(run.exitCode, each.exitCode) << each.what << ": " << run.output;
        EXPECT_EQ(contentAt(machine.files, each.unpacked), each.content) << each.what;
        EXPECT_EQ(contentAt(machine.files, "staging/last"), "last") << each.what;
    }
}

TEST(SimulatedArchiveTool, MakesReadOnlyFilesAndLinksWithThePrivilege) {
    Machine machine = machineWith({{"kept", "x", Kind::file, true}, {"link", "C:/Desk/folder", Kind::folderLink}});
    machine.processes.archiveTool.makesLinks = true;
    EXPECT_EQ(unpack(machine).exitCode, 0U);
    EXPECT_EQ(machine.files.find("staging/kept")->attributes, attribute::archive | attribute::readOnly);
    EXPECT_EQ(contentAt(machine.files, "staging/link/inner"), "inner");
}

TEST(SimulatedArchiveTool, FailsOnAFullDiskAndGoesOn) {
    Machine machine = machineWith({{"a.pak", std::string(100, 'a')}, {"b.pak", ""}});
    machine.files.volumeOf("C:/").freeBytes = Disk::kEntryBytes * 2 + 50;
    const ToolRun run = unpack(machine);
    EXPECT_EQ(run.exitCode, 1U);
    EXPECT_EQ(contentAt(machine.files, "staging/a.pak"), std::string(100, 'a'));
    EXPECT_EQ(spellingOf(machine.files, "staging/b.pak"), "(none)");
}

TEST(SimulatedArchiveTool, CannotEnterWhatIsNoFolder) {
    Machine machine = machineWith({{"a.pak", "a"}});
    EXPECT_EQ(runTool(machine, "-xf C:/Desk/package.zip -C C:/none").exitCode, 1U);
    EXPECT_EQ(runTool(machine, "-xf C:/Desk/package.zip -C C:/Desk/plain").exitCode, 1U);
    EXPECT_EQ(runTool(machine, "-xf C:/Desk/package.zip -C C:/" + std::string(256, 'x')).exitCode, 1U);
}

TEST(SimulatedArchiveTool, GetsItsArgumentsThroughTheCodePage) {
    Machine machine = machineWith({{"a.pak", "a"}});
    for (const std::string folder : {"\xC3\xA4 \xC2\xB5", "\xC4\x80", "\xD0\x98\xD0\xB3\xD1\x80\xD1\x8B"}) {
        const std::string path = "C:/Desk/" + folder;
        machine.files.putFolder(path);
        const bool isLatin = folder.starts_with('\xC3');
        const ToolRun run = runTool(machine, "-xf C:/Desk/package.zip -C \"" + path + "\"");
        EXPECT_EQ(run.exitCode, isLatin ? 0U : 1U) << folder;
        EXPECT_EQ(contentAt(machine.files, path + "/a.pak"), isLatin ? "a" : "(none)") << folder;
    }
}

TEST(SimulatedArchiveTool, PrintsFailsAndWaitsAsItIsTold) {
    Machine machine = machineWith({{"a.pak", "a"}});
    machine.processes.archiveTool.alsoPrints = "warning\r\n";
    machine.processes.archiveTool.alsoPrintsBytes = 300000;
    machine.processes.archiveTool.exitCode = 3;
    const ToolRun run = list(machine);
    EXPECT_EQ(run.output.size(), 9 + 300000 + 7U);
    EXPECT_EQ(run.exitCode, 3U);
    machine.processes.archiveTool = {.neverEnds = true};
    EXPECT_THROW((void)list(machine), Hung);
}

TEST(SimulatedArchiveTool, GoesOnStepByStepAfterItsParentsEnd) {
    Machine machine = machineWith({{"a.pak", "a"}, {"b.pak", "b"}});
    startTool(machine, "-xf C:/Desk/package.zip -C C:/Desk/staging");
    machine.processes.step(machine.files, 2);
    EXPECT_EQ(contentAt(machine.files, "staging/a.pak"), "");
    machine.killCaller();
    machine.beginCaller(kTool, "C:/Desk");
    EXPECT_EQ(machine.files.deleteFile("staging/a.pak"), 32U);
    EXPECT_EQ(machine.files.deleteFile("package.zip"), 32U);
    EXPECT_EQ(machine.files.moveFile("staging", "moved"), 32U);
    EXPECT_EQ(act(machine, {.kind = Intrusion::Kind::letChildrenRun}), 0U);
    EXPECT_EQ(contentAt(machine.files, "staging/b.pak"), "b");
    EXPECT_EQ(machine.files.moveFile("staging", "moved"), 0U);
}

TEST(SimulatedArchiveTool, LeavesAPartOfAFileWhenItIsKilled) {
    Machine machine = machineWith({{"a.pak", "a"}});
    const Started started = startTool(machine, "-xf C:/Desk/package.zip -C C:/Desk/staging");
    machine.processes.step(machine.files, 2);
    machine.processes.terminate(machine.files, started.handle, 9);
    EXPECT_EQ(machine.processes.exitCodeOf(started.handle, 1), 9U);
    EXPECT_EQ(contentAt(machine.files, "staging/a.pak"), "");
    EXPECT_EQ(machine.files.deleteFile("staging/a.pak"), 0U);
}

TEST(SimulatedArchiveTool, EndsWhenNobodyReadsItsListing) {
    Machine machine = machineWith({{"a.pak", "a"}});
    const Started started = startTool(machine, "-tf C:/Desk/package.zip");
    machine.killCaller();
    machine.processes.step(machine.files, 2);
    EXPECT_FALSE(machine.processes.find(started.id)->isRunning);
    EXPECT_EQ(machine.processes.find(started.id)->exitCode, 1U);
}

}  // namespace
}  // namespace vorthmere::update::simulation
