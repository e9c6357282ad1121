#include <array>
#include <utility>

#include "tests/simulation/machine.h"

namespace vorthmere::update::simulation {
namespace {

using Kind = Intrusion::Kind;

constexpr std::uint64_t kPlentyOfBytes = std::uint64_t{1} << 50;

constexpr std::array<std::string_view, 23> kNames = {
    "opens",
    "lets go of",
    "creates",
    "creates the folder",
    "removes",
    "renames",
    "makes read-only",
    "makes writable",
    "locks",
    "maps",
    "unmaps",
    "plants a junction at",
    "plants a file link at",
    "plants a folder link at",
    "enters",
    "leaves",
    "fills the disk of",
    "frees the disk of",
    "takes away the volume of",
    "brings back the volume of",
    "starts",
    "ends",
    "lets the archive tools run",
};
static_assert(kNames.size() == static_cast<std::size_t>(Kind::letChildrenRun) + 1);

Error release(FileSystem& files, const std::string& path) {
    for (const OpenFile& open : files.openFilesOf(files.caller)) {
        const EntryId below = files.entryOf(path);
        if (path.empty() || (below != kNoEntry && open.entry != kNoEntry && files.disk.isBelow(open.entry, below)))
            (void)files.close(open.id);
    }
    return error::none;
}

Error create(FileSystem& files, const Intrusion& intrusion) {
    HandleId file = 0;
    if (const Error creation = files.createToWrite(intrusion.path, file); creation != error::none) return creation;
    const Error writing = files.write(file, intrusion.second);
    (void)files.close(file);
    return writing;
}

Error remove(FileSystem& files, const std::string& path) {
    const Error removal = files.removeEmptyFolder(path);
    return removal == error::notADirectory ? files.deleteFile(path) : removal;
}

Error setReadOnly(FileSystem& files, const std::string& path, bool isReadOnly) {
    std::uint32_t attributes = 0;
    if (const Error query = files.entryAttributes(path, attributes); query != error::none) return query;
    attributes &= ~attribute::readOnly;
    return files.setAttributes(path, isReadOnly ? attributes | attribute::readOnly : attributes);
}

Error lock(FileSystem& files, const std::string& path) {
    HandleId file = 0;
    if (const Error opening = files.open(path, access::read, access::all, false, file); opening != error::none)
        return opening;
    return files.lock(file, 0, kPlentyOfBytes);
}

Error plant(FileSystem& files, const Intrusion& intrusion, std::uint32_t reparseTag, bool toFolder) {
    if (files.find(intrusion.path))
        if (const Error removal = remove(files, intrusion.path); removal != error::none) return removal;
    return files.createLink(intrusion.path, reparseTag, intrusion.second, toFolder);
}

Error start(Machine& machine, const std::string& path) {
    ProcessId started = 0;
    const std::string folder = path.substr(0, path.find_last_of('/'));
    return machine.processes.start(machine.files, path, "\"" + path + "\"", folder, 0, started);
}

Error endPrograms(Machine& machine, const std::string& path) {
    const EntryId program = machine.files.entryOf(path);
    Error result = error::fileNotFound;
    for (const ProcessId id : machine.processes.running()) {
        if (id == machine.caller || id == machine.otherProgram) continue;
        if (machine.processes.find(id)->image != program) continue;
        machine.processes.end(machine.files, id, 1);
        result = error::none;
    }
    return result;
}

Error letChildrenRun(Machine& machine, std::uint64_t steps) {
    if (steps != 0) {
        machine.processes.step(machine.files, static_cast<std::size_t>(steps));
        return error::none;
    }
    for (const ProcessId id : machine.processes.running())
        if (machine.processes.find(id)->tool) (void)machine.processes.runToItsEnd(machine.files, id);
    return error::none;
}

Error actOnVolume(Volume& volume, const Intrusion& intrusion) {
    switch (intrusion.kind) {
        case Kind::fillDisk:
            volume.freeBytes = intrusion.number;
            break;
        case Kind::freeDisk:
            volume.freeBytes = kPlentyOfBytes;
            break;
        case Kind::takeVolumeAway:
            volume.isPresent = false;
            break;
        default:
            volume.isPresent = true;
            break;
    }
    return error::none;
}

Error actOnFiles(FileSystem& files, const Intrusion& intrusion) {
    HandleId kept = 0;
    switch (intrusion.kind) {
        case Kind::open:
            return files.open(intrusion.path, intrusion.access, intrusion.sharing, false, kept);
        case Kind::release:
            return release(files, intrusion.path);
        case Kind::create:
            return create(files, intrusion);
        case Kind::createFolder:
            return files.createFolder(intrusion.path);
        case Kind::remove:
            return remove(files, intrusion.path);
        case Kind::rename:
            return files.moveFile(intrusion.path, intrusion.second);
        case Kind::setReadOnly:
            return setReadOnly(files, intrusion.path, true);
        case Kind::clearReadOnly:
            return setReadOnly(files, intrusion.path, false);
        case Kind::lock:
            return lock(files, intrusion.path);
        case Kind::map:
            return files.map(intrusion.path);
        case Kind::unmap:
            files.unmap(intrusion.path);
            return error::none;
        case Kind::plantJunction:
            return plant(files, intrusion, tag::junction, true);
        case Kind::plantFileLink:
            return plant(files, intrusion, tag::symbolicLink, false);
        case Kind::plantFolderLink:
            return plant(files, intrusion, tag::symbolicLink, true);
        case Kind::enterFolder:
            return files.setCurrentFolder(files.caller, intrusion.path);
        case Kind::leaveFolder:
            return files.setCurrentFolder(files.caller, "C:/");
        default:
            return actOnVolume(files.volumeOf(intrusion.path), intrusion);
    }
}

std::string sharingInWords(unsigned sharing) {
    if (sharing == access::none) return "nothing";
    std::string words;
    if ((sharing & access::read) != 0) words += "|read";
    if ((sharing & access::write) != 0) words += "|write";
    if ((sharing & access::remove) != 0) words += "|delete";
    return words.substr(1);
}

}  // namespace

std::string_view nameOf(Kind kind) {
    return kNames[static_cast<std::size_t>(kind)];
}

std::string describe(const Intrusion& intrusion) {
    std::string text = "another program ";
    text.append(nameOf(intrusion.kind)).append(" ").append(intrusion.path);
    if (intrusion.kind == Kind::open) {
        text.append(" for ").append(sharingInWords(intrusion.access));
        text.append(", sharing ").append(sharingInWords(intrusion.sharing));
    }
    if (!intrusion.second.empty() && intrusion.kind != Kind::create) text.append(" -> ").append(intrusion.second);
    if (intrusion.number != 0) text.append(" (").append(std::to_string(intrusion.number)).append(")");
    return text;
}

Error act(Machine& machine, const Intrusion& intrusion) {
    const ProcessId caller = std::exchange(machine.files.caller, machine.otherProgram);
    Error result = error::none;
    if (intrusion.kind == Kind::startProgram)
        result = start(machine, intrusion.path);
    else if (intrusion.kind == Kind::endPrograms)
        result = endPrograms(machine, intrusion.path);
    else if (intrusion.kind == Kind::letChildrenRun)
        result = letChildrenRun(machine, intrusion.number);
    else
        result = actOnFiles(machine.files, intrusion);
    machine.files.caller = caller;
    return result;
}

}  // namespace vorthmere::update::simulation
