#include "tests/simulation/file_system.h"
#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

/// The attributes that a program may set; the others say what an entry is.
constexpr std::uint32_t kSettable = 0x3127;

}  // namespace

Error FileSystem::createFolder(std::string_view folder) {
    const FullPath full = fullPathOf(folder, currentFolder());
    if (!full.isExtended && utf16Length(full.text) > settings.longestFolderToCreate) return error::nameTooLong;
    const Place place = locate(folder, Links::keep);
    if (place.isDevice) return error::notADirectory;
    if (place.entry != kNoEntry) {
        const bool isRoot = disk.at(place.entry).parent == kNoEntry;
        return isRoot || disk.at(place.entry).isDeletePending ? error::accessDenied : error::alreadyExists;
    }
    if (place.error != error::fileNotFound) return place.error;
    if (const Error creation = creationError(place); creation != error::none) return creation;
    disk.create(place.folder, place.name, attribute::folder);
    return error::none;
}

Error FileSystem::removeEmptyFolder(std::string_view folder) {
    const Place place = locate(folder, Links::keep);
    if (place.isDevice) return error::notADirectory;
    if (place.error == error::invalidName && place.entry != kNoEntry) return error::notADirectory;
    if (place.error != error::none) return place.error;
    if (!disk.at(place.entry).isFolder()) return error::notADirectory;
    if (const Error opening = openingError(place.entry, access::remove, access::all); opening != error::none)
        return opening;
    if (place.folder == kNoEntry) return error::sharingViolation;
    if (const Error removal = removalError(place.entry); removal != error::none) return removal;
    remove(place.entry);
    return error::none;
}

Error FileSystem::deleteFile(std::string_view file) {
    const Place place = locate(file, Links::keep);
    if (place.isDevice) return error::invalidFunction;
    if (place.error != error::none) return place.error;
    if (disk.at(place.entry).isFolder()) return error::accessDenied;
    if (const Error opening = openingError(place.entry, access::remove, access::all); opening != error::none)
        return opening;
    if (const Error removal = removalError(place.entry); removal != error::none) return removal;
    remove(place.entry);
    return error::none;
}

Error FileSystem::setAttributes(std::string_view path, std::uint32_t attributes) {
    const Place place = locate(path, Links::keep);
    if (place.isDevice) return error::invalidParameter;
    if (place.error != error::none) return place.error;
    Entry& entry = disk.at(place.entry);
    if (const Error opening = openingError(place.entry, access::none, access::all); opening != error::none)
        return opening;
    if (disk.volumes()[entry.volume].isWriteProtected) return error::writeProtected;
    entry.attributes = (entry.attributes & ~kSettable) | (attributes & kSettable);
    return error::none;
}

Error FileSystem::moveFile(std::string_view from, std::string_view to) {
    const Place source = locate(from, Links::keep);
    if (source.isDevice) return error::fileNotFound;
    if (source.error != error::none) return source.error;
    if (const Error opening = openingError(source.entry, access::remove, access::all); opening != error::none)
        return opening;
    const Entry& moved = disk.at(source.entry);
    if (source.folder == kNoEntry) return error::accessDenied;
    const Place target = locate(to, Links::keep);
    if (target.isDevice) return error::accessDenied;
    if (target.error != error::none && target.error != error::fileNotFound) return target.error;
    if (target.folder == kNoEntry) return error::accessDenied;
    if (target.endsInSeparator && !moved.isFolder()) return error::invalidName;
    if (disk.at(target.folder).volume != moved.volume) return moveToOtherVolume(from, to, source.entry);
    return moveOnto(source.entry, target);
}

// Both are on one volume, so the rename happens whole or not at all.
Error FileSystem::moveOnto(EntryId source, const Place& target) {
    const Entry& moved = disk.at(source);
    if (disk.volumes()[moved.volume].isWriteProtected) return error::writeProtected;
    if (moved.isFolder() && isAnyHeldBelow(source)) return error::accessDenied;
    if (moved.isFolder() && disk.isBelow(target.folder, source)) return error::sharingViolation;
    if (disk.at(target.folder).isDeletePending) return error::accessDenied;
    if (disk.at(target.folder).refusal != error::none) return disk.at(target.folder).refusal;
    if (target.entry != kNoEntry && target.entry != source) {
        if (const Error replacing = replacingError(source, target.entry); replacing != error::none) return replacing;
        remove(target.entry);
    }
    disk.rename(source, target.folder, target.name);
    return error::none;
}

// A copy, then a removal: when only the removal fails, both files stay and the move has succeeded.
Error FileSystem::moveToOtherVolume(std::string_view from, std::string_view to, EntryId source) {
    if (disk.at(source).isFolder()) return error::notSameDevice;
    const Place target = locate(to, Links::keep);
    if (target.entry != kNoEntry)
        if (const Error replacing = replacingError(source, target.entry); replacing != error::none) return replacing;
    if (const Error copy = copyFile(from, to, true); copy != error::none) return copy;
    if (removalError(source) == error::none) remove(source);
    return error::none;
}

Error FileSystem::createLink(std::string_view path, std::uint32_t reparseTag, std::string_view target, bool toFolder) {
    const Place place = locate(path, Links::keep);
    EntryId link = place.entry;
    if (link != kNoEntry) {
        const Entry& old = disk.at(link);
        if (!old.isFolder() || !toFolder || tag::isLink(old.reparseTag)) return error::alreadyExists;
        if (!old.children.empty()) return error::folderNotEmpty;
        if (const Error opening = openingError(link, access::write, access::all); opening != error::none)
            return opening;
    } else {
        if (place.error != error::fileNotFound) return place.error;
        if (const Error creation = creationError(place); creation != error::none) return creation;
        link = disk.create(place.folder, place.name, toFolder ? attribute::folder : attribute::archive);
    }
    disk.at(link).attributes |= attribute::reparsePoint;
    disk.at(link).reparseTag = reparseTag;
    disk.at(link).linkTarget = target;
    return error::none;
}

}  // namespace vorthmere::update::simulation
