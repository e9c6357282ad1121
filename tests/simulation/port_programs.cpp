#include "platform/programs.h"

#include "tests/simulation/names.h"
#include "tests/simulation/passage.h"

namespace vorthmere::update {

using namespace simulation;

namespace {

std::string nameOfProcess(void* handle) {
    return currentGate().machine().processes.nameOf(toId(handle));
}

}  // namespace

void closeProcessHandle(void* handle) noexcept {
    if (isAnyRunning() && handle != nullptr)
        passClosing(Operation::closeProcessHandle, nameOfProcess(handle),
                    [handle](Machine& machine) { return machine.processes.close(toId(handle)) == error::none; });
}

std::error_code openPipe(Pipe& pipe) {
    HandleId readEnd = 0;
    HandleId writeEnd = 0;
    const Error result = passWhole(Operation::openPipe, "", "",
                                   [&](Machine& machine) { return machine.processes.openPipe(readEnd, writeEnd); });
    pipe.readEnd.reset(toHandle(readEnd));
    pipe.writeEnd.reset(toHandle(writeEnd));
    return toFailure(result);
}

ProcessHandle startCaptured(const std::filesystem::path& program, std::wstring commandLine,
                            const std::filesystem::path& workingFolder, const FileHandle& output,
                            std::error_code& failure) {
    const std::string text = textOf(program);
    const std::string folder = textOf(workingFolder);
    const std::string line = narrowOf(commandLine);
    HandleId process = 0;
    const auto start = [&](Machine& machine) {
        ProcessId id = 0;
        const Error result = machine.processes.start(machine.files, text, line, folder, toId(output.get()), id);
        if (result == error::none) process = machine.processes.handleFor(id);
        return result;
    };
    failure = toFailure(passWhole(Operation::startCaptured, simulation::withSlashes(line), folder, start));
    return ProcessHandle(toHandle(process));
}

std::error_code startProgram(const std::filesystem::path& program, std::wstring commandLine,
                             const std::filesystem::path& workingFolder) {
    const std::string text = textOf(program);
    const std::string folder = textOf(workingFolder);
    const std::string line = narrowOf(commandLine);
    return toFailure(passWhole(Operation::startProgram, simulation::withSlashes(line), folder, [&](Machine& machine) {
        ProcessId id = 0;
        return machine.processes.start(machine.files, text, line, folder, 0, id);
    }));
}

ProcessHandle openProcess(std::uint32_t processId, std::error_code& failure) {
    HandleId process = 0;
    failure = toFailure(passWhole(Operation::openProcess, std::to_string(processId), "",
                                  [&](Machine& machine) { return machine.processes.openProcess(processId, process); }));
    return ProcessHandle(toHandle(process));
}

bool waitForEnd(const ProcessHandle& process, std::uint32_t milliseconds) {
    return passWhole(Operation::waitForEnd, nameOfProcess(process.get()), std::to_string(milliseconds) + " ms",
                     [&](Machine& machine) {
                         const bool hasEnded =
                             machine.processes.waitForEnd(machine.files, toId(process.get()), milliseconds);
                         return hasEnded ? error::none : error::waitTimedOut;
                     }) == error::none;
}

void endProcess(const ProcessHandle& process, std::uint32_t exitCode) {
    (void)passWhole(Operation::endProcess, nameOfProcess(process.get()), std::to_string(exitCode),
                    [&](Machine& machine) {
                        machine.processes.terminate(machine.files, toId(process.get()), exitCode);
                        return error::none;
                    });
}

// A fault gives another exit code; the one for an invalid handle means that there is none to be told.
std::uint32_t exitCodeOf(const ProcessHandle& process, std::uint32_t unknown) {
    std::uint32_t code = unknown;
    const Error fault = passWhole(
        Operation::exitCodeOf, nameOfProcess(process.get()), "",
        [&](Machine& machine) {
            code = machine.processes.exitCodeOf(toId(process.get()), unknown);
            return error::none;
        },
        &code);
    if (fault == error::invalidHandle) return unknown;
    return fault == error::none ? code : fault;
}

std::filesystem::path systemFolder() {
    std::string folder;
    const Error result = passWhole(Operation::systemFolder, "", "", [&](Machine& machine) {
        folder = machine.processes.systemFolder;
        return error::none;
    });
    return result == error::none ? pathOf(folder) : std::filesystem::path();
}

}  // namespace vorthmere::update
