#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t kForever = 0xFFFFFFFF;

Error start(Machine& machine, std::string_view program, std::string_view folder = "C:/Desk") {
    ProcessId started = 0;
    return machine.processes.start(machine.files, program, "\"program\"", folder, 0, started);
}

/// A game with a process handle to it.
struct Game {
    ProcessId id = 0;
    HandleId handle = 0;
};

Game startGame(Machine& machine, const ProgramBehaviour& behaviour) {
    Game game;
    machine.processes.programs["program.exe"] = behaviour;
    EXPECT_EQ(machine.processes.start(machine.files, "C:/Desk/program.exe", "", "C:/Desk", 0, game.id), 0U);
    game.handle = machine.processes.handleFor(game.id);
    return game;
}

TEST(SimulatedProcesses, TellWhyAProgramDoesNotStart) {
    const auto onDesk = [](const std::function<Error(Machine&)>& call) {
        Machine machine = desk();
        return call(machine);
    };
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/Desk/program.exe"); }), 0U);
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/Desk/none.exe"); }), 2U);
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/none/none.exe"); }), 3U);
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/Desk/folder"); }), 5U);
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/Desk/plain"); }), 193U);
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/Desk/program.exe", "C:/none"); }), 267U);
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/Desk/program.exe", "C:/Desk/plain"); }), 267U);
    EXPECT_EQ(onDesk([](Machine& m) { return start(m, "C:/Desk/program.exe", "C:/" + std::string(256, 'x')); }), 267U);
    EXPECT_EQ(onDesk([](Machine& m) {
                  held(m, "program.exe", access::write, access::all);
                  return start(m, "C:/Desk/program.exe");
              }),
              32U);
    EXPECT_EQ(onDesk([](Machine& m) {
                  m.processes.programs["program.exe"].startError = 740;
                  return start(m, "C:/Desk/PROGRAM.exe");
              }),
              740U);
}

TEST(SimulatedProcesses, LeaveNothingHeldWhenTheyDoNotStart) {
    Machine machine = desk();
    EXPECT_EQ(start(machine, "C:/Desk/plain", "C:/Desk/empty"), 193U);
    EXPECT_EQ(start(machine, "C:/Desk/program.exe", "C:/none"), 267U);
    EXPECT_EQ(machine.files.removeEmptyFolder("empty"), 0U);
    EXPECT_EQ(machine.files.deleteFile("plain"), 0U);
    EXPECT_EQ(machine.files.deleteFile("program.exe"), 0U);
    EXPECT_EQ(machine.files.openFilesOf(machine.caller).size(), 0U);
}

TEST(SimulatedProcesses, HoldTheirProgramFolderAndFilesUntilTheirEnd) {
    Machine machine = desk();
    const Game game = startGame(machine, {.opens = {"plain"}});
    EXPECT_EQ(machine.files.deleteFile("program.exe"), 5U);
    EXPECT_EQ(machine.files.deleteFile("plain"), 32U);
    EXPECT_EQ(machine.files.moveFile("C:/Desk", "C:/Moved"), 32U);
    machine.processes.end(machine.files, game.id, 3);
    EXPECT_EQ(machine.files.deleteFile("program.exe"), 0U);
    EXPECT_EQ(machine.files.deleteFile("plain"), 0U);
    EXPECT_EQ(machine.processes.exitCodeOf(game.handle, 1), 3U);
}

TEST(SimulatedProcesses, AreWaitedForInTimeThatOnlyCounts) {
    Machine machine = desk();
    const Game game = startGame(machine, {.runsForMs = 5000, .exitCode = 7});
    EXPECT_FALSE(machine.processes.waitForEnd(machine.files, game.handle, 4000));
    EXPECT_EQ(machine.processes.nowMs, 4000U);
    EXPECT_EQ(machine.processes.exitCodeOf(game.handle, 1), 259U);
    EXPECT_TRUE(machine.processes.waitForEnd(machine.files, game.handle, 120000));
    EXPECT_EQ(machine.processes.nowMs, 5000U);
    EXPECT_EQ(machine.processes.exitCodeOf(game.handle, 1), 7U);
    EXPECT_FALSE(machine.processes.waitForEnd(machine.files, game.handle + 4, 10));
    EXPECT_EQ(machine.processes.exitCodeOf(game.handle + 4, 99), 99U);
}

TEST(SimulatedProcesses, ThatNeverEndHangWhoeverWaitsForEver) {
    Machine machine = desk();
    const Game game = startGame(machine, {});
    EXPECT_FALSE(machine.processes.waitForEnd(machine.files, game.handle, 120000));
    EXPECT_THROW((void)machine.processes.waitForEnd(machine.files, game.handle, kForever), Hung);
}

TEST(SimulatedProcesses, AreOpenedByTheirNumber) {
    Machine machine = desk();
    Game game = startGame(machine, {});
    HandleId handle = 0;
    EXPECT_EQ(machine.processes.openProcess(0, handle), 87U);
    EXPECT_EQ(machine.processes.openProcess(game.id + 4, handle), 87U);
    EXPECT_EQ(machine.processes.openProcess(game.id, handle), 0U);
    machine.processes.end(machine.files, game.id, 0);
    // A handle keeps the number known.
    EXPECT_EQ(machine.processes.close(handle), 0U);
    EXPECT_EQ(machine.processes.openProcess(game.id, handle), 0U);
    EXPECT_TRUE(machine.processes.waitForEnd(machine.files, handle, 0));
    EXPECT_EQ(machine.processes.close(handle), 0U);
    EXPECT_EQ(machine.processes.close(game.handle), 0U);
    EXPECT_EQ(machine.processes.openProcess(game.id, handle), 87U);
    EXPECT_EQ(machine.processes.close(handle), 6U);
    game = startGame(machine, {});
    machine.processes.protect(game.id);
    EXPECT_EQ(machine.processes.openProcess(game.id, handle), 5U);
}

TEST(SimulatedProcesses, TellWhatTheCallerLeftOpen) {
    Machine machine = desk();
    HandleId file = 0;
    HandleId readEnd = 0;
    HandleId writeEnd = 0;
    ASSERT_EQ(machine.files.openToRead("plain", file), 0U);
    ASSERT_EQ(machine.processes.openPipe(readEnd, writeEnd), 0U);
    ASSERT_NE(machine.internet.openSession(), 0U);
    ASSERT_NE(machine.digests.openProvider(), 0U);
    EXPECT_THAT(machine.openHandles(), ElementsAre("plain", "the read end of a pipe", "the write end of a pipe",
                                                   "a session", "the SHA-256 provider"));
    EXPECT_THAT(machine.endCaller().size(), 5U);
    EXPECT_THAT(machine.openHandles(), IsEmpty());
    EXPECT_EQ(machine.files.deleteFile("C:/Desk/plain"), 0U);
}

TEST(SimulatedProcesses, ThatAreKilledLeaveTheirChildrenRunning) {
    Machine machine = desk();
    const Game game = startGame(machine, {});
    machine.killCaller();
    EXPECT_TRUE(machine.isFrozen());
    EXPECT_TRUE(machine.processes.find(game.id)->isRunning);
    EXPECT_EQ(machine.files.deleteFile("C:/Desk/program.exe"), 5U);
    machine.beginCaller("C:/Windows/System32/svchost.exe", "C:/");
    EXPECT_FALSE(machine.isFrozen());
}

TEST(SimulatedProcesses, BreakAPipeWhenItsLastWriterGoes) {
    Machine machine = desk();
    Processes& processes = machine.processes;
    HandleId readEnd = 0;
    HandleId writeEnd = 0;
    char buffer[4] = {};
    std::size_t count = 0;
    ASSERT_EQ(processes.openPipe(readEnd, writeEnd), 0U);
    EXPECT_THROW((void)processes.readPipe(machine.files, readEnd, buffer, 4, count), Hung);
    EXPECT_EQ(processes.readPipe(machine.files, writeEnd, buffer, 4, count), 5U);
    EXPECT_EQ(processes.closePipe(writeEnd), 0U);
    EXPECT_EQ(processes.readPipe(machine.files, readEnd, buffer, 4, count), 109U);
    EXPECT_EQ(processes.closePipe(readEnd), 0U);
    EXPECT_EQ(processes.closePipe(readEnd), 6U);
}

}  // namespace
}  // namespace vorthmere::update::simulation
