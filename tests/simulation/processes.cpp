#include "tests/simulation/processes.h"

#include <algorithm>
#include <utility>

#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::uint32_t kForever = 0xFFFFFFFF;
constexpr std::uint32_t kStillRunning = 259;
constexpr std::size_t kLongestWorkingFolder = 258;

std::string fileNameOf(std::string_view path) {
    std::string name = withSlashes(path);
    name.erase(0, name.find_last_of('/') + 1);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
    return name;
}

bool isArchiveTool(std::string_view program) {
    return fileNameOf(program) == "tar.exe";
}

}  // namespace

Process& Processes::add(std::string_view program) {
    Process& process = processes_.emplace_back();
    process.id = nextProcess_ += 4;
    process.program = withSlashes(program);
    return process;
}

Error Processes::start(FileSystem& files, std::string_view program, std::string_view commandLine,
                       std::string_view workingFolder, HandleId output, ProcessId& started) {
    const bool isTool = isArchiveTool(program);
    const auto known = programs.find(fileNameOf(program));
    const ProgramBehaviour behaviour = known == programs.end() ? ProgramBehaviour() : known->second;
    const Error refused = isTool ? archiveTool.startError : behaviour.startError;
    if (refused != error::none) return refused;
    EntryId image = kNoEntry;
    if (const Error loading = files.beginImage(program, image); loading != error::none) return loading;
    const bool isProgram = files.disk.at(image).content->starts_with(kProgramMark);
    const bool hasFolder = utf16Length(workingFolder) <= kLongestWorkingFolder &&
                           files.setCurrentFolder(nextProcess_ + 4, workingFolder) == error::none;
    if (!isProgram || !hasFolder) {
        files.endImage(image);
        files.closeAllOf(nextProcess_ + 4);
        return isProgram ? error::notADirectory : error::notAProgram;
    }
    Process& process = add(program);
    process.parent = files.caller;
    process.commandLine = commandLine;
    process.image = image;
    if (const PipeEnd* end = pipeEnd(output)) process.pipe = end->pipe;
    if (process.pipe != 0) ++pipes_[process.pipe].writers;
    if (isTool)
        process.tool.emplace(commandLine, archiveTool);
    else
        behave(files, process, behaviour);
    started = process.id;
    return error::none;
}

void Processes::behave(FileSystem& files, Process& process, const ProgramBehaviour& behaviour) {
    process.exitCode = behaviour.exitCode;
    if (behaviour.runsForMs) process.endsAtMs = nowMs + *behaviour.runsForMs;
    const ProcessId caller = std::exchange(files.caller, process.id);
    for (const std::string& path : behaviour.opens) {
        HandleId ignored = 0;
        (void)files.open(path, access::read, access::read, false, ignored);
    }
    files.caller = caller;
}

ProcessId Processes::put(FileSystem& files, std::string_view program, std::string_view currentFolder) {
    Process& process = add(program);
    (void)files.beginImage(program, process.image);
    if (!currentFolder.empty()) (void)files.setCurrentFolder(process.id, currentFolder);
    return process.id;
}

void Processes::end(FileSystem& files, ProcessId id, std::uint32_t exitCode) {
    Process* process = at(id);
    if (process == nullptr || !process->isRunning) return;
    process->isRunning = false;
    process->exitCode = exitCode;
    process->tool.reset();
    if (process->image != kNoEntry) files.endImage(process->image);
    if (process->pipe != 0) --pipes_[process->pipe].writers;
    files.closeAllOf(id);
}

/// @return false when the tool has nothing left to do
bool Processes::stepTool(FileSystem& files, Process& process) {
    if (!process.isRunning || !process.tool || process.tool->waitsForEver()) return false;
    std::string output;
    const ProcessId caller = std::exchange(files.caller, process.id);
    const bool goesOn = process.tool->step(files, output);
    files.caller = caller;
    SimulatedPipe& pipe = pipes_[process.pipe];
    const bool isUnheard = process.pipe != 0 && !pipe.hasReader && !output.empty();
    if (process.pipe != 0 && pipe.hasReader) pipe.bytes.append(output);
    if (isUnheard)
        end(files, process.id, 1);
    else if (!goesOn && !process.tool->waitsForEver())
        end(files, process.id, process.tool->exitCode());
    return true;
}

void Processes::step(FileSystem& files, std::size_t steps) {
    for (; steps > 0; --steps)
        for (Process& process : processes_)
            (void)stepTool(files, process);
}

bool Processes::runToItsEnd(FileSystem& files, ProcessId id) {
    Process* process = at(id);
    if (process == nullptr) return true;
    while (process->isRunning && stepTool(files, *process)) {
    }
    if (process->isRunning && process->endsAtMs) letTimePass(files, *process->endsAtMs);
    return !process->isRunning;
}

void Processes::letTimePass(FileSystem& files, std::uint64_t untilMs) {
    nowMs = std::max(nowMs, untilMs);
    for (const Process& process : processes_)
        if (process.isRunning && process.endsAtMs && *process.endsAtMs <= nowMs)
            end(files, process.id, process.exitCode);
}

Error Processes::openProcess(ProcessId id, HandleId& opened) {
    const Process* process = find(id);
    const bool isKept =
        std::any_of(handles_.begin(), handles_.end(), [id](const ProcessHandle& other) { return other.process == id; });
    if (process == nullptr || (!process->isRunning && !isKept)) return error::invalidParameter;
    if (process->isProtected) return error::accessDenied;
    opened = handleFor(id);
    return error::none;
}

HandleId Processes::handleFor(ProcessId id) {
    handles_.push_back({nextHandle_ += 4, id});
    return nextHandle_;
}

bool Processes::waitForEnd(FileSystem& files, HandleId waited, std::uint32_t milliseconds) {
    const ProcessHandle* known = handle(waited);
    if (known == nullptr) return false;
    const ProcessId id = known->process;
    const Process* process = find(id);
    while (process->isRunning && stepTool(files, *at(id))) {
    }
    if (!process->isRunning) return true;
    if (process->endsAtMs && (milliseconds == kForever || *process->endsAtMs <= nowMs + milliseconds)) {
        letTimePass(files, *process->endsAtMs);
        return true;
    }
    if (milliseconds == kForever) throw Hung{"waiting for the end of " + process->program};
    letTimePass(files, nowMs + milliseconds);
    return false;
}

void Processes::terminate(FileSystem& files, HandleId ended, std::uint32_t exitCode) {
    if (const ProcessHandle* known = handle(ended)) end(files, known->process, exitCode);
}

std::uint32_t Processes::exitCodeOf(HandleId process, std::uint32_t unknown) const {
    const ProcessHandle* known = handle(process);
    if (known == nullptr) return unknown;
    const Process* found = find(known->process);
    return found->isRunning ? kStillRunning : found->exitCode;
}

std::string Processes::nameOf(HandleId process) const {
    const ProcessHandle* known = handle(process);
    return known == nullptr ? "nothing" : find(known->process)->program;
}

Error Processes::close(HandleId process) {
    const auto erased = std::erase_if(handles_, [process](const ProcessHandle& known) { return known.id == process; });
    return erased == 0 ? error::invalidHandle : error::none;
}

Error Processes::openPipe(HandleId& readEnd, HandleId& writeEnd) {
    pipes_.emplace_back().writers = 1;
    readEnd = nextHandle_ += 4;
    writeEnd = nextHandle_ += 4;
    pipeEnds_.push_back({readEnd, pipes_.size() - 1, false});
    pipeEnds_.push_back({writeEnd, pipes_.size() - 1, true});
    return error::none;
}

bool Processes::isPipe(HandleId id) const {
    return pipeEnd(id) != nullptr;
}

/// Lets a process that can write to the pipe take one step. @return false when none can
bool Processes::helpWriterOf(FileSystem& files, std::size_t pipe) {
    for (Process& process : processes_) {
        if (process.pipe != pipe || !process.isRunning) continue;
        if (stepTool(files, process)) return true;
        if (process.endsAtMs) {
            letTimePass(files, *process.endsAtMs);
            return true;
        }
    }
    return false;
}

Error Processes::readPipe(FileSystem& files, HandleId readEnd, char* buffer, std::size_t size, std::size_t& count) {
    count = 0;
    const PipeEnd* end = pipeEnd(readEnd);
    if (end == nullptr || end->writes) return error::accessDenied;
    const std::size_t pipe = end->pipe;
    while (pipes_[pipe].taken == pipes_[pipe].bytes.size()) {
        if (pipes_[pipe].writers == 0) return error::brokenPipe;
        if (!helpWriterOf(files, pipe)) throw Hung{"reading a pipe"};
    }
    SimulatedPipe& source = pipes_[pipe];
    count = source.bytes.copy(buffer, size, source.taken);
    source.taken += count;
    return error::none;
}

Error Processes::closePipe(HandleId id) {
    const PipeEnd* end = pipeEnd(id);
    if (end == nullptr) return error::invalidHandle;
    if (end->writes)
        --pipes_[end->pipe].writers;
    else
        pipes_[end->pipe].hasReader = false;
    std::erase_if(pipeEnds_, [id](const PipeEnd& other) { return other.id == id; });
    return error::none;
}

Process* Processes::at(ProcessId id) {
    const auto found =
        std::find_if(processes_.begin(), processes_.end(), [id](const Process& process) { return process.id == id; });
    return found == processes_.end() ? nullptr : &*found;
}

const Process* Processes::find(ProcessId id) const {
    return const_cast<Processes*>(this)->at(id);
}

const Processes::ProcessHandle* Processes::handle(HandleId id) const {
    const auto found =
        std::find_if(handles_.begin(), handles_.end(), [id](const ProcessHandle& known) { return known.id == id; });
    return found == handles_.end() ? nullptr : &*found;
}

const Processes::PipeEnd* Processes::pipeEnd(HandleId id) const {
    const auto found =
        std::find_if(pipeEnds_.begin(), pipeEnds_.end(), [id](const PipeEnd& end) { return end.id == id; });
    return found == pipeEnds_.end() ? nullptr : &*found;
}

std::vector<ProcessId> Processes::running() const {
    std::vector<ProcessId> ids;
    for (const Process& process : processes_)
        if (process.isRunning) ids.push_back(process.id);
    return ids;
}

std::vector<ProcessId> Processes::runningChildrenOf(ProcessId parent) const {
    std::vector<ProcessId> ids;
    for (const Process& process : processes_)
        if (process.isRunning && process.parent == parent) ids.push_back(process.id);
    return ids;
}

void Processes::protect(ProcessId id) {
    if (Process* process = at(id)) process->isProtected = true;
}

std::vector<std::string> Processes::openHandles() const {
    std::vector<std::string> open;
    for (const ProcessHandle& known : handles_)
        open.push_back("the process " + find(known.process)->program);
    for (const PipeEnd& end : pipeEnds_)
        open.emplace_back(end.writes ? "the write end of a pipe" : "the read end of a pipe");
    return open;
}

void Processes::closeAllHandles() {
    handles_.clear();
    while (!pipeEnds_.empty())
        (void)closePipe(pipeEnds_.back().id);
}

}  // namespace vorthmere::update::simulation
