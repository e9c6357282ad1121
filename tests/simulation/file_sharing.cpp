#include <algorithm>

#include "tests/simulation/file_system.h"

namespace vorthmere::update::simulation {

// Two openings go together only if each shares the other's access. The rule does not apply to asking for attributes.
Error FileSystem::openingError(EntryId entry, unsigned access, unsigned sharing) const {
    const Entry& opened = disk.at(entry);
    if (opened.isDeletePending) return error::accessDenied;
    if (opened.refusal != error::none) return opened.refusal;
    if (access == access::none) return error::none;
    for (const OpenFile& other : files_) {
        if (other.entry != entry || other.access == access::none) continue;
        if ((access & ~other.sharing) != 0 || (other.access & ~sharing) != 0) return error::sharingViolation;
    }
    const bool writes = (access & access::write) != 0;
    if (writes && opened.images > 0) return error::sharingViolation;
    if (writes && disk.volumes()[opened.volume].isWriteProtected) return error::writeProtected;
    return error::none;
}

// What prevents the deletion of an entry that could be opened for it.
Error FileSystem::removalError(EntryId entry) const {
    const Entry& removed = disk.at(entry);
    if (disk.volumes()[removed.volume].isWriteProtected) return error::writeProtected;
    if (removed.isReadOnly() || removed.images > 0 || removed.mappings > 0) return error::accessDenied;
    return removed.children.empty() ? error::none : error::folderNotEmpty;
}

// What prevents emptying a file and writing it anew. CREATE_ALWAYS and CopyFileW also refuse hidden and system files.
Error FileSystem::overwritingError(EntryId entry, unsigned sharing) const {
    const Entry& written = disk.at(entry);
    if (written.isFolder()) return error::accessDenied;
    if (const Error opening = openingError(entry, access::write, sharing); opening != error::none) return opening;
    constexpr std::uint32_t forbidden = attribute::readOnly | attribute::hidden | attribute::system;
    if ((written.attributes & forbidden) != 0) return error::accessDenied;
    return written.mappings > 0 ? error::userMappedFile : error::none;
}

// What prevents replacing a file by a rename. Any handle on it does, whatever it shares, and the error is 5, not 32.
Error FileSystem::replacingError(EntryId from, EntryId to) const {
    const Entry& target = disk.at(to);
    if (target.isFolder() || target.isReadOnly() || target.isDeletePending) return error::accessDenied;
    if (isHeld(to) || target.images > 0 || target.mappings > 0) return error::accessDenied;
    if (target.refusal != error::none) return target.refusal;
    return disk.isBelow(to, from) ? error::accessDenied : error::none;
}

bool FileSystem::isHeld(EntryId entry) const {
    return std::any_of(files_.begin(), files_.end(), [entry](const OpenFile& file) { return file.entry == entry; });
}

bool FileSystem::isAnyHeldBelow(EntryId folder) const {
    return std::any_of(files_.begin(), files_.end(), [this, folder](const OpenFile& file) {
        return file.entry != kNoEntry && file.entry != folder && disk.at(file.entry).isNamed &&
               disk.isBelow(file.entry, folder);
    });
}

bool FileSystem::isLocked(EntryId entry, HandleId by, std::uint64_t begin, std::uint64_t end) const {
    return std::any_of(locks_.begin(), locks_.end(), [=](const Lock& lock) {
        return lock.entry == entry && lock.owner != by && lock.begin < end && begin < lock.end;
    });
}

HandleId FileSystem::hold(EntryId entry, unsigned access, unsigned sharing, std::string_view path) {
    OpenFile& file = files_.emplace_back();
    file.id = nextHandle_ += 4;
    file.owner = caller;
    file.entry = entry;
    file.access = access;
    file.sharing = sharing;
    file.path = path;
    return file.id;
}

OpenFile* FileSystem::findOpen(HandleId id) {
    const auto at = std::find_if(files_.begin(), files_.end(), [id](const OpenFile& file) { return file.id == id; });
    return at == files_.end() ? nullptr : &*at;
}

const OpenFile* FileSystem::openFile(HandleId file) const {
    const auto at =
        std::find_if(files_.begin(), files_.end(), [file](const OpenFile& open) { return open.id == file; });
    return at == files_.end() ? nullptr : &*at;
}

std::vector<OpenFile> FileSystem::openFilesOf(ProcessId process) const {
    std::vector<OpenFile> open;
    std::copy_if(files_.begin(), files_.end(), std::back_inserter(open),
                 [process](const OpenFile& file) { return file.owner == process && !file.isCurrentFolder; });
    return open;
}

// The name of a deleted file that is held goes at once or with the last holder, depending on the volume.
void FileSystem::remove(EntryId entry) {
    const bool isInUse = isHeld(entry);
    if (isInUse && !disk.volumes()[disk.at(entry).volume].deletesAtOnce) {
        disk.at(entry).isDeletePending = true;
        return;
    }
    disk.unlink(entry);
    if (!isInUse) disk.forget(entry);
}

void FileSystem::removeIfLetGo(EntryId entry) {
    if (isHeld(entry)) return;
    if (disk.at(entry).isDeletePending && disk.at(entry).isNamed) {
        disk.at(entry).isDeletePending = false;
        disk.unlink(entry);
        disk.forget(entry);
    } else if (!disk.at(entry).isNamed && !disk.at(entry).isForgotten) {
        disk.forget(entry);
    }
}

Error FileSystem::close(HandleId id) {
    const auto at = std::find_if(files_.begin(), files_.end(), [id](const OpenFile& file) { return file.id == id; });
    if (at == files_.end()) {
        ++wrongClosings_;
        return error::invalidHandle;
    }
    const EntryId entry = at->entry;
    files_.erase(at);
    std::erase_if(locks_, [id](const Lock& lock) { return lock.owner == id; });
    if (entry != kNoEntry) removeIfLetGo(entry);
    return error::none;
}

void FileSystem::closeAllOf(ProcessId process) {
    while (true) {
        const auto at = std::find_if(files_.begin(), files_.end(),
                                     [process](const OpenFile& file) { return file.owner == process; });
        if (at == files_.end()) break;
        (void)close(at->id);
    }
    currentFolders_.erase(process);
}

Error FileSystem::setCurrentFolder(ProcessId process, std::string_view folder) {
    const Place place = locate(folder, Links::follow);
    if (place.error != error::none) return place.error;
    if (!disk.at(place.entry).isFolder()) return error::notADirectory;
    constexpr unsigned shared = access::read | access::write;
    if (const Error opening = openingError(place.entry, access::read, shared); opening != error::none) return opening;
    std::erase_if(files_, [process](const OpenFile& file) { return file.owner == process && file.isCurrentFolder; });
    hold(place.entry, access::read, shared, folder);
    files_.back().owner = process;
    files_.back().isCurrentFolder = true;
    currentFolders_[process] = disk.pathOf(place.entry);
    return error::none;
}

}  // namespace vorthmere::update::simulation
