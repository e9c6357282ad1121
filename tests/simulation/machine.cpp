#include "tests/simulation/machine.h"

#include <iterator>
#include <utility>

namespace vorthmere::update::simulation {
namespace {

constexpr std::string_view kOtherProgram = "C:/Windows/System32/svchost.exe";
constexpr std::string_view kArchiveTool = "C:/Windows/System32/tar.exe";

void append(std::vector<std::string>& all, std::vector<std::string> more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

}  // namespace

Machine::Machine(Profile profile) {
    Volume volume;
    volume.deletesAtOnce = profile == Profile::posixDelete;
    volume.refusesDeviceNames = profile == Profile::networkShare;
    files.disk.addVolume(volume);
    files.putFile(kOtherProgram, contentOf("MZ service"));
    files.putFile(kArchiveTool, contentOf("MZ archive tool"));
    otherProgram = processes.put(files, kOtherProgram, "");
}

ProcessId Machine::beginCaller(std::string_view program, std::string_view currentFolder) {
    caller = processes.put(files, program, currentFolder);
    files.caller = caller;
    isFrozen_ = false;
    return caller;
}

std::vector<std::string> Machine::openHandles() const {
    std::vector<std::string> open;
    for (const OpenFile& file : files.openFilesOf(caller))
        open.push_back(file.path);
    append(open, processes.openHandles());
    append(open, internet.openHandles());
    append(open, digests.openHandles());
    return open;
}

void Machine::dropCallersHandles() {
    processes.closeAllHandles();
    internet.closeAllHandles();
    digests.closeAllHandles();
}

std::vector<std::string> Machine::endCaller(std::uint32_t exitCode) {
    std::vector<std::string> left = openHandles();
    dropCallersHandles();
    processes.end(files, caller, exitCode);
    return left;
}

void Machine::killCaller() {
    (void)endCaller(1);
    isFrozen_ = true;
}

void Machine::losePower(const std::vector<Fate>& fates) {
    dropCallersHandles();
    for (const ProcessId process : processes.running())
        processes.end(files, process, 1);
    files.losePower(fates);
    otherProgram = processes.put(files, kOtherProgram, "");
    isFrozen_ = true;
}

}  // namespace vorthmere::update::simulation
