#include <string>

#include "tests/simulation/file_system.h"

namespace vorthmere::update::simulation {
namespace {

/// The attributes that a copy takes from its source.
constexpr std::uint32_t kCopied = 0x2127;

Content halfThenZeros(const std::string& bytes) {
    std::string half = bytes.substr(0, bytes.size() / 2);
    half.resize(bytes.size(), '\0');
    return contentOf(std::move(half));
}

}  // namespace

Error FileSystem::makeFile(const Place& place, EntryId& created) {
    if (place.endsInSeparator) return error::invalidName;
    if (const Error creation = creationError(place); creation != error::none) return creation;
    created = disk.create(place.folder, place.name, attribute::archive);
    return error::none;
}

// The source is opened first: its faults come before those of the target.
Error FileSystem::copyFile(std::string_view from, std::string_view to, bool overwrite, Extent extent) {
    const Place source = locate(from, Links::follow);
    if (source.error != error::none) return source.error;
    if (disk.at(source.entry).isFolder()) return error::accessDenied;
    if (disk.at(source.entry).reparseTag == tag::programAlias) return error::linkCannotBeAccessed;
    if (const Error opening = openingError(source.entry, access::read, access::all); opening != error::none)
        return opening;
    const Place place = locate(to, Links::follow);
    if (place.isDevice) return error::none;
    EntryId target = kNoEntry;
    if (const Error opening = openCopyTarget(place, overwrite, source.entry, target); opening != error::none)
        return opening;
    const Error filling = fillCopy(source.entry, target, extent);
    if (filling != error::none) abandonCopy(target);
    return filling;
}

Error FileSystem::openCopyTarget(const Place& place, bool overwrite, EntryId source, EntryId& target) {
    if (place.entry == kNoEntry) return place.error == error::fileNotFound ? makeFile(place, target) : place.error;
    if (place.error != error::none) return place.error;
    if (disk.at(place.entry).isFolder()) return error::accessDenied;
    if (!overwrite) return disk.at(place.entry).isDeletePending ? error::accessDenied : error::fileExists;
    if (place.entry == source) return error::sharingViolation;
    constexpr unsigned shared = access::read | access::write;
    if (const Error overwriting = overwritingError(place.entry, shared); overwriting != error::none) return overwriting;
    target = place.entry;
    return error::none;
}

// Windows removes a target that it could not fill, even one that was there before. Where a holder forbids that, the
// target stays without its bytes.
void FileSystem::abandonCopy(EntryId target) {
    if (openingError(target, access::remove, access::all) == error::none)
        remove(target);
    else
        (void)disk.replaceContent(target, contentOf(""));
}

Error FileSystem::fillCopy(EntryId source, EntryId target, Extent extent) {
    const Entry& from = disk.at(source);
    Entry& into = disk.at(target);
    const std::uint64_t size = from.content->size();
    if (isLocked(source, 0, 0, size) || isLocked(target, 0, 0, size)) return error::lockViolation;
    const Content content = extent == Extent::part ? halfThenZeros(*from.content) : from.content;
    if (!disk.replaceContent(target, content)) return error::diskFull;
    if (extent == Extent::whole) into.attributes = (from.attributes & kCopied) | attribute::archive;
    return error::none;
}

}  // namespace vorthmere::update::simulation
