#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

TEST(SimulatedSharing, LetsTwoOpeningsTogetherWhenEachSharesWhatTheOtherDoes) {
    std::size_t together = 0;
    const Machine prepared = desk();
    for (unsigned pair = 0; pair < 8 * 8 * 8 * 8; ++pair) {
        const unsigned access = pair & 7;
        const unsigned sharing = pair >> 3 & 7;
        const unsigned otherAccess = pair >> 6 & 7;
        const unsigned otherSharing = pair >> 9 & 7;
        Machine machine = prepared;
        held(machine, "plain", access, sharing);
        HandleId file = 0;
        const bool takePart = access != access::none && otherAccess != access::none;
        const bool fits = (access & ~otherSharing) == 0 && (otherAccess & ~sharing) == 0;
        const Error expected = !takePart || fits ? error::none : error::sharingViolation;
        ASSERT_EQ(machine.files.open("plain", otherAccess, otherSharing, false, file), expected) << pair;
        together += expected == error::none ? 1 : 0;
    }
    // 960 pairs in which one takes no part, and 19 x 19 in which each shares enough.
    EXPECT_EQ(together, 960U + 19U * 19U);
}

struct Holder {
    std::string what;
    unsigned access;
    unsigned sharing;
    Error read;
    Error write;
    Error rename;
    Error remove;
    Error copyFrom;
    Error copyOnto;
};

TEST(SimulatedSharing, DecidesWhatCanBeDoneToAHeldFile) {
    using namespace access;
    const std::vector<Holder> holders = {
        {"shares nothing", read, access::none, 32, 32, 32, 32, 32, 32},
        {"shares reading", read, read, 0, 32, 32, 32, 0, 32},
        {"shares reading and writing", read, read | write, 0, 0, 32, 32, 0, 0},
        {"shares all", read, all, 0, 0, 0, 0, 0, 0},
        {"shares deletion alone", read, access::remove, 32, 32, 0, 0, 32, 32},
        {"writes, shares all", write, all, 0, 0, 0, 0, 0, 0},
        {"may delete, shares all", access::remove, all, 32, 32, 0, 0, 0, 32},
        {"asks for attributes alone", access::none, access::none, 0, 0, 0, 0, 0, 0},
    };
    for (const Holder& holder : holders) {
        const auto told = [&holder](const std::function<Error(FileSystem&)>& call) {
            Machine machine = desk();
            held(machine, "plain", holder.access, holder.sharing);
            return call(machine.files);
        };
        HandleId file = 0;
        EXPECT_EQ(told([&](FileSystem& f) { return f.openToRead("plain", file); }), holder.read) << holder.what;
        EXPECT_EQ(told([&](FileSystem& f) { return f.createToWrite("plain", file); }), holder.write) << holder.what;
        EXPECT_EQ(told([](FileSystem& f) { return f.moveFile("plain", "moved"); }), holder.rename) << holder.what;
        EXPECT_EQ(told([](FileSystem& f) { return f.deleteFile("plain"); }), holder.remove) << holder.what;
        EXPECT_EQ(told([](FileSystem& f) { return f.copyFile("plain", "copy", true); }), holder.copyFrom)
            << holder.what;
        EXPECT_EQ(told([](FileSystem& f) { return f.copyFile("other", "plain", true); }), holder.copyOnto)
            << holder.what;
        EXPECT_EQ(told([](FileSystem& f) { return f.moveFile("other", "plain"); }), 5U) << holder.what;
    }
}

TEST(SimulatedSharing, NeverHidesAttributes) {
    Machine machine = desk();
    held(machine, "plain", access::all, access::none);
    Facts facts;
    std::uint32_t attributes = 0;
    HandleId file = 0;
    EXPECT_EQ(machine.files.entryAttributes("plain", attributes), error::none);
    EXPECT_EQ(machine.files.entryFacts("plain", facts), error::none);
    EXPECT_EQ(machine.files.targetFacts("plain", facts), error::none);
    EXPECT_EQ(machine.files.openForItsName("plain", file), error::none);
    EXPECT_EQ(machine.files.setAttributes("plain", attribute::readOnly), error::none);
}

TEST(SimulatedSharing, EndsWithTheHandle) {
    Machine machine = desk();
    const HandleId file = held(machine, "plain", access::read, access::none);
    EXPECT_EQ(machine.files.deleteFile("plain"), error::sharingViolation);
    EXPECT_EQ(machine.files.close(file), error::none);
    EXPECT_EQ(machine.files.deleteFile("plain"), error::none);
    EXPECT_EQ(machine.files.close(file), error::invalidHandle);
    EXPECT_EQ(machine.files.wrongClosings(), 1U);
}

TEST(SimulatedSharing, ProtectsARunningProgram) {
    const auto run = [](FileSystem& files) {
        EntryId image = kNoEntry;
        EXPECT_EQ(files.beginImage("program.exe", image), error::none);
        return image;
    };
    HandleId file = 0;
    expectAll({
        {"read",
         [&](FileSystem& f) {
             run(f);
             return f.openToRead("program.exe", file);
         },
         0},
        {"write",
         [&](FileSystem& f) {
             run(f);
             return f.createToWrite("program.exe", file);
         },
         32},
        {"copy from",
         [&](FileSystem& f) {
             run(f);
             return f.copyFile("program.exe", "copy", true);
         },
         0},
        {"copy onto",
         [&](FileSystem& f) {
             run(f);
             return f.copyFile("plain", "program.exe", true);
         },
         32},
        {"delete",
         [&](FileSystem& f) {
             run(f);
             return f.deleteFile("program.exe");
         },
         5},
        {"rename",
         [&](FileSystem& f) {
             run(f);
             return f.moveFile("program.exe", "old.exe");
         },
         0},
        {"rename onto",
         [&](FileSystem& f) {
             run(f);
             return f.moveFile("plain", "program.exe");
         },
         5},
        {"delete after its end",
         [&](FileSystem& f) {
             f.endImage(run(f));
             return f.deleteFile("program.exe");
         },
         0},
        {"run what is written",
         [&](FileSystem& f) {
             EXPECT_EQ(f.open("program.exe", access::write, access::all, false, file), error::none);
             EntryId image = kNoEntry;
             return f.beginImage("program.exe", image);
         },
         32},
        {"run what is held without sharing to read",
         [&](FileSystem& f) {
             EXPECT_EQ(f.open("program.exe", access::read, access::none, false, file), error::none);
             EntryId image = kNoEntry;
             return f.beginImage("program.exe", image);
         },
         32},
    });
}

TEST(SimulatedSharing, ProtectsAMappedFile) {
    HandleId file = 0;
    expectAll({
        {"read",
         [&](FileSystem& f) {
             f.map("plain");
             return f.openToRead("plain", file);
         },
         0},
        {"create anew",
         [&](FileSystem& f) {
             f.map("plain");
             return f.createToWrite("plain", file);
         },
         1224},
        {"copy onto",
         [&](FileSystem& f) {
             f.map("plain");
             return f.copyFile("other", "plain", true);
         },
         1224},
        {"delete",
         [&](FileSystem& f) {
             f.map("plain");
             return f.deleteFile("plain");
         },
         5},
        {"rename",
         [&](FileSystem& f) {
             f.map("plain");
             return f.moveFile("plain", "moved");
         },
         0},
        {"rename onto",
         [&](FileSystem& f) {
             f.map("plain");
             return f.moveFile("other", "plain");
         },
         5},
        {"delete once unmapped",
         [&](FileSystem& f) {
             f.map("plain");
             f.unmap("plain");
             return f.deleteFile("plain");
         },
         0},
    });
}

TEST(SimulatedSharing, LetsOnlyTheOwnerIntoALockedRange) {
    Machine machine = desk();
    FileSystem& files = machine.files;
    const HandleId owner = held(machine, "plain", access::read | access::write, access::all);
    ASSERT_EQ(files.lock(owner, 2, 10), error::none);
    HandleId file = 0;
    ASSERT_EQ(files.open("plain", access::read | access::write, access::all, false, file), error::none);
    char buffer[8] = {};
    std::size_t count = 0;
    EXPECT_EQ(files.read(file, buffer, 2, count), error::none);
    EXPECT_EQ(files.read(file, buffer, 2, count), error::lockViolation);
    EXPECT_EQ(files.write(file, "xyz"), error::lockViolation);
    EXPECT_EQ(files.lock(file, 5, 1), error::lockViolation);
    EXPECT_EQ(files.read(owner, buffer, 5, count), error::none);
    EXPECT_EQ(count, 5U);
    EXPECT_EQ(files.copyFile("plain", "copy", true), error::lockViolation);
    EXPECT_EQ(spellingOf(files, "copy"), "(none)");
    ASSERT_EQ(files.close(file), error::none);
    EXPECT_EQ(files.moveFile("plain", "moved"), error::none);
    EXPECT_EQ(files.copyFile("other", "moved", true), error::lockViolation);
    const HandleId another = held(machine, "other", access::read, access::all);
    ASSERT_EQ(files.lock(another, 0, 10), error::none);
    EXPECT_EQ(files.close(another), error::none);
    EXPECT_EQ(files.copyFile("other", "copy", true), error::none);
}

TEST(SimulatedSharing, HoldsACurrentFolder) {
    const auto enter = [](FileSystem& f, std::string_view folder) {
        EXPECT_EQ(f.setCurrentFolder(9999, folder), error::none);
    };
    HandleId file = 0;
    expectAll({
        {"remove",
         [&](FileSystem& f) {
             enter(f, "empty");
             return f.removeEmptyFolder("empty");
         },
         32},
        {"rename",
         [&](FileSystem& f) {
             enter(f, "empty");
             return f.moveFile("empty", "moved");
         },
         32},
        {"rename its parent",
         [&](FileSystem& f) {
             enter(f, "folder");
             return f.moveFile("C:/Desk", "C:/Moved");
         },
         32},
        {"rename a parent that nobody is in",
         [&](FileSystem& f) {
             f.putFolder("C:/Desk/folder/deep");
             enter(f, "folder/deep");
             return f.moveFile("folder", "moved");
         },
         5},
        {"list",
         [&](FileSystem& f) {
             enter(f, "folder");
             std::vector<Listed> l;
             return f.listFolder("folder", l);
         },
         0},
        {"create in it",
         [&](FileSystem& f) {
             enter(f, "empty");
             return f.createToWrite("empty/a", file);
         },
         0},
        {"leave it",
         [&](FileSystem& f) {
             enter(f, "empty");
             enter(f, "C:/");
             return f.removeEmptyFolder("empty");
         },
         0},
        {"its process ends",
         [&](FileSystem& f) {
             enter(f, "empty");
             f.closeAllOf(9999);
             return f.removeEmptyFolder("empty");
         },
         0},
        {"a file", [&](FileSystem& f) { return f.setCurrentFolder(9999, "plain"); }, 267},
        {"missing", [&](FileSystem& f) { return f.setCurrentFolder(9999, "none"); }, 2},
    });
}

TEST(SimulatedSharing, KeepsAFolderWithAnOpenFileBelowFromBeingRenamed) {
    HandleId file = 0;
    expectAll({
        {"open file below",
         [&](FileSystem& f) {
             EXPECT_EQ(f.open("folder/inner", access::read, access::all, false, file), error::none);
             return f.moveFile("folder", "moved");
         },
         5},
        {"open folder itself, shared",
         [&](FileSystem& f) {
             EXPECT_EQ(f.openForItsName("folder", file), error::none);
             return f.moveFile("folder", "moved");
         },
         0},
        {"open file beside",
         [&](FileSystem& f) {
             EXPECT_EQ(f.open("plain", access::read, access::all, false, file), error::none);
             return f.moveFile("folder", "moved");
         },
         0},
    });
}

}  // namespace
}  // namespace vorthmere::update::simulation
