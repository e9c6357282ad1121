#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/archive_tool.h"
#include "tests/simulation/file_system.h"
#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

/// The beginning of every program's file; a file that begins otherwise is no program (193).
inline constexpr std::string_view kProgramMark = "MZ";

/// What a started program does, except the archive tool.
struct ProgramBehaviour {
    Error startError = error::none;               ///< the error of CreateProcessW
    std::optional<std::uint64_t> runsForMs = {};  ///< none: it runs until somebody ends it
    std::uint32_t exitCode = 0;
    std::vector<std::string> opens = {};  ///< files that it holds while it runs, sharing to read only
};

struct Process {
    ProcessId id = 0;
    ProcessId parent = 0;
    std::string program;
    std::string commandLine;
    EntryId image = kNoEntry;
    bool isRunning = true;
    bool isProtected = false;  ///< opening it is refused: 5
    std::optional<std::uint64_t> endsAtMs;
    std::uint32_t exitCode = 0;
    std::size_t pipe = 0;  ///< where its output goes; 0: nowhere
    std::optional<ArchiveToolRun> tool;
};

/// A pipe between the caller and its children.
struct SimulatedPipe {
    std::string bytes;
    std::size_t taken = 0;
    std::size_t writers = 0;  ///< handles and running children that can write
    bool hasReader = true;
};

/// A call that would never return: reading a pipe or waiting for a process that nothing will ever end.
struct Hung {
    std::string where;
};

/// Processes, their handles and the pipes between them. Time is a number; waiting adds to it.
class Processes {
public:
    std::uint64_t nowMs = 0;
    std::string systemFolder = "C:/Windows/System32";
    ArchiveToolBehaviour archiveTool;
    std::map<std::string, ProgramBehaviour, std::less<>>
        programs;  ///< by file name in small letters; others: the default
    /// How many steps each running archive tool takes at each call of the caller, besides the steps that it takes while
    /// the caller waits for it.
    std::size_t stepsAlongside = 0;

    /// @param files the file system that it runs on, the same in every call
    Error start(FileSystem& files, std::string_view program, std::string_view commandLine,
                std::string_view workingFolder, HandleId output, ProcessId& started);
    /// Starts a program without a look at files or rules.
    ProcessId put(FileSystem& files, std::string_view program, std::string_view currentFolder);
    void end(FileSystem& files, ProcessId process, std::uint32_t exitCode);
    /// Lets each running archive tool take this many steps.
    void step(FileSystem& files, std::size_t steps);
    /// Lets a process run until it ends. @return false when it never does
    bool runToItsEnd(FileSystem& files, ProcessId process);

    Error openProcess(ProcessId id, HandleId& handle);
    HandleId handleFor(ProcessId id);
    bool waitForEnd(FileSystem& files, HandleId process, std::uint32_t milliseconds);
    void terminate(FileSystem& files, HandleId process, std::uint32_t exitCode);
    [[nodiscard]] std::uint32_t exitCodeOf(HandleId process, std::uint32_t unknown) const;
    Error close(HandleId process);

    Error openPipe(HandleId& readEnd, HandleId& writeEnd);
    [[nodiscard]] bool isPipe(HandleId handle) const;
    Error readPipe(FileSystem& files, HandleId readEnd, char* buffer, std::size_t size, std::size_t& count);
    Error closePipe(HandleId end);

    /// The program of the process that the handle belongs to.
    [[nodiscard]] std::string nameOf(HandleId process) const;
    [[nodiscard]] const Process* find(ProcessId id) const;
    [[nodiscard]] std::vector<ProcessId> running() const;
    [[nodiscard]] std::vector<ProcessId> runningChildrenOf(ProcessId parent) const;
    void protect(ProcessId id);
    /// Handles of processes and pipes that the caller still has.
    [[nodiscard]] std::vector<std::string> openHandles() const;
    void closeAllHandles();

private:
    struct PipeEnd {
        HandleId id = 0;
        std::size_t pipe = 0;
        bool writes = false;
    };
    struct ProcessHandle {
        HandleId id = 0;
        ProcessId process = 0;
    };
    [[nodiscard]] Process* at(ProcessId id);
    [[nodiscard]] const ProcessHandle* handle(HandleId id) const;
    [[nodiscard]] const PipeEnd* pipeEnd(HandleId id) const;
    Process& add(std::string_view program);
    void behave(FileSystem& files, Process& process, const ProgramBehaviour& behaviour);
    bool stepTool(FileSystem& files, Process& process);
    bool helpWriterOf(FileSystem& files, std::size_t pipe);
    void letTimePass(FileSystem& files, std::uint64_t untilMs);

    std::vector<Process> processes_;
    std::vector<SimulatedPipe> pipes_{1};  // the first stands for "nowhere"
    std::vector<PipeEnd> pipeEnds_;
    std::vector<ProcessHandle> handles_;
    ProcessId nextProcess_ = 1000;
    HandleId nextHandle_ = 0x800000;
};

}  // namespace vorthmere::update::simulation
