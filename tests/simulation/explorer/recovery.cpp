#include "tests/simulation/explorer/recovery.h"

#include "tests/simulation/explorer/releases.h"
#include "tests/simulation/explorer/tree.h"

namespace vorthmere::update::simulation {
namespace {

/// The file manager asks whether to replace a read-only file, and does when told so.
Error copyReplacing(FileSystem& files, const std::string& from, const std::string& to) {
    std::uint32_t attributes = 0;
    if (files.entryAttributes(to, attributes) == error::none && (attributes & attribute::readOnly) != 0)
        files.setAttributes(to, attributes & ~attribute::readOnly);
    if (files.entryAttributes(to, attributes) == error::none && (attributes & attribute::folder) != 0)
        files.moveFile(to, to + " of the update");
    return files.copyFile(from, to, true);
}

}  // namespace

std::vector<std::string> recover(Machine& machine) {
    std::vector<std::string> failed;
    const ProcessId formerCaller = machine.files.caller;
    machine.files.caller = machine.otherProgram;
    for (const EntryView& entry : machine.files.entriesBelow(place::kBackup)) {
        const std::string target = std::string(place::kInstallation) + entry.path.substr(place::kBackup.size());
        std::uint32_t attributes = 0;
        Error fault = error::none;
        if (!entry.isFolder())
            fault = copyReplacing(machine.files, entry.path, target);
        else if (machine.files.entryAttributes(target, attributes) != error::none)
            fault = machine.files.createFolder(target);
        if (fault != error::none) failed.push_back(target);
    }
    machine.files.caller = formerCaller;
    return failed;
}

}  // namespace vorthmere::update::simulation
