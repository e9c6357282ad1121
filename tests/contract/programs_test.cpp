// openPipe, startCaptured, startProgram, openProcess, waitForEnd, endProcess, exitCodeOf and systemFolder.
#include "platform/programs.h"

#include <array>

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

constexpr std::uint32_t kUnknown = 4711;
constexpr std::uint32_t kLongWaitMs = 30000;

class ProgramContract : public ContractTest {
protected:
    /// Starts the archive tool to list a package. Its output goes into the pipe, whose write end stays open.
    ProcessHandle startArchiveTool(const Pipe& pipe, std::string_view folder = "") {
        const std::filesystem::path tool = systemFolder() / "tar.exe";
        const std::wstring commandLine = L"\"" + tool.wstring() + L"\" -tf missing.zip";
        return startCaptured(tool, commandLine, scene.at(folder), pipe.writeEnd, failure);
    }

    /// Reads the pipe until nobody can write to it.
    std::string readToTheEnd(const Pipe& pipe) {
        std::string all;
        std::array<char, 64> block{};
        while (const std::size_t count = readBytes(pipe.readEnd, block.data(), block.size(), failure))
            all.append(block.data(), count);
        return all;
    }
};

TEST_F(ProgramContract, TheSystemsFolderHasTheArchiveTool) {
    EXPECT_TRUE(systemFolder().is_absolute() || systemFolder().native()[1] == ':');
    EXPECT_EQ(askingFacts((systemFolder() / "tar.exe").generic_string())(scene).value(), 0);
}

TEST_F(ProgramContract, ACapturedProgramsOutputEndsWithItAndItsExitCodeIsKnown) {
    Pipe pipe;
    ASSERT_FALSE(openPipe(pipe));
    const ProcessHandle tool = startArchiveTool(pipe);
    ASSERT_TRUE(tool) << failure.value();
    EXPECT_FALSE(failure);
    pipe.writeEnd.reset();
    EXPECT_NE(readToTheEnd(pipe), "");
    EXPECT_EQ(failure.value(), 109);
    EXPECT_TRUE(waitForEnd(tool, kLongWaitMs));
    EXPECT_EQ(exitCodeOf(tool, kUnknown), 1u);
}

TEST_F(ProgramContract, APipeWithoutAWriterIsBroken) {
    Pipe pipe;
    ASSERT_FALSE(openPipe(pipe));
    pipe.writeEnd.reset();
    EXPECT_EQ(readToTheEnd(pipe), "");
    EXPECT_EQ(failure.value(), 109);
}

TEST_F(ProgramContract, WhatCannotBeStartedSaysWhy) {
    scene.make("d/ text");
    scene.write("game.exe", world.programBytes());
    const auto starting = [this](std::string_view program, std::string_view folder) {
        return startProgram(scene.at(program), L"\"game\"", scene.at(folder));
    };
    EXPECT_EQ(starting("missing.exe", "d").value(), 2);
    EXPECT_EQ(starting("e/missing.exe", "d").value(), 3);
    EXPECT_TRUE(follows(world, "a folder is no program", starting("d", "d"), 5));
    EXPECT_EQ(starting("text", "d").value(), 193);
    EXPECT_EQ(starting("game.exe", "missing").value(), 267);
    EXPECT_TRUE(follows(world, "a file is no folder to start in", starting("game.exe", "text"), 267));
    ASSERT_EQ(world.hold(scene.at("game.exe"), access::write, access::all), 0u);
    EXPECT_TRUE(follows(world, "a program that somebody writes is not started", starting("game.exe", "d"), 32));
}

TEST_F(ProgramContract, ARunningProgramIsReadAndMovedButNeitherChangedNorDeleted) {
    scene.make("new");
    scene.write("game.exe", world.programBytes());
    world.start(scene.at("game.exe"));
    EXPECT_EQ(reading("game.exe")(scene).value(), 0);
    EXPECT_EQ(copying("game.exe", "copy.exe")(scene).value(), 0);
    EXPECT_EQ(deleting("game.exe")(scene).value(), 5);
    EXPECT_EQ(creating("game.exe")(scene).value(), 32);
    EXPECT_EQ(copying("new", "game.exe")(scene).value(), 32);
    EXPECT_EQ(moving("new", "game.exe")(scene).value(), 5);
    EXPECT_EQ(moving("game.exe", "old.exe")(scene).value(), 0);
    EXPECT_EQ(moving("new", "game.exe")(scene).value(), 0);
    EXPECT_EQ(deleting("old.exe")(scene).value(), 5);
    world.endPrograms();
    EXPECT_EQ(deleting("old.exe")(scene).value(), 0);
}

TEST_F(ProgramContract, AProcessIsWaitedForByItsNumber) {
    scene.write("game.exe", world.programBytes());
    const std::uint32_t id = world.start(scene.at("game.exe"));
    const ProcessHandle process = openProcess(id, failure);
    ASSERT_TRUE(process);
    EXPECT_FALSE(failure);
    EXPECT_FALSE(waitForEnd(process, 0));
    world.endPrograms();
    EXPECT_TRUE(waitForEnd(process, kLongWaitMs));
    EXPECT_TRUE(waitForEnd(process, 0));
}

TEST_F(ProgramContract, ANumberOfNoProcessIsAWrongParameter) {
    EXPECT_FALSE(openProcess(0, failure));
    EXPECT_EQ(failure.value(), 87);
    EXPECT_FALSE(openProcess(0xFFFFFFF0, failure));
    EXPECT_EQ(failure.value(), 87);
}

TEST_F(ProgramContract, AStartedProcessCanBeEnded) {
    scene.write("game.exe", world.programBytes());
    Pipe pipe;
    ASSERT_FALSE(openPipe(pipe));
    const ProcessHandle game =
        startCaptured(scene.at("game.exe"), L"\"game.exe\" sleep", scene.at(""), pipe.writeEnd, failure);
    ASSERT_TRUE(game) << failure.value();
    EXPECT_FALSE(waitForEnd(game, 0));
    endProcess(game, 9);
    EXPECT_TRUE(waitForEnd(game, kLongWaitMs));
    EXPECT_EQ(exitCodeOf(game, kUnknown), 9u);
}

TEST_F(ProgramContract, AProcessThatHasEndedKeepsItsExitCode) {
    Pipe pipe;
    ASSERT_FALSE(openPipe(pipe));
    const ProcessHandle tool = startArchiveTool(pipe);
    ASSERT_TRUE(tool);
    EXPECT_TRUE(waitForEnd(tool, kLongWaitMs));
    endProcess(tool, 9);
    EXPECT_EQ(exitCodeOf(tool, kUnknown), 1u);
}

TEST_F(ProgramContract, NoProcessHasAnExitCodeOrAnEnd) {
    EXPECT_EQ(exitCodeOf(ProcessHandle(), kUnknown), kUnknown);
    EXPECT_FALSE(waitForEnd(ProcessHandle(), 0));
}

TEST_F(ProgramContract, ARunningChildKeepsItsWorkingFolder) {
    scene.make("d/");
    scene.write("game.exe", world.programBytes());
    world.start(scene.at("game.exe"));
    ASSERT_EQ(world.enter(scene.at("d")), 0u);
    EXPECT_EQ(removingFolder("d")(scene).value(), 32);
    EXPECT_EQ(moving("d", "e")(scene).value(), 32);
}

}  // namespace
}  // namespace vorthmere::update::contract
