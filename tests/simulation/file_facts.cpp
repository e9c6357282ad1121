#include <algorithm>

#include "tests/simulation/file_system.h"
#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

std::uint64_t sizeOf(const Entry& entry) {
    return entry.content ? entry.content->size() : 0;
}

}  // namespace

Error FileSystem::entryAttributes(std::string_view path, std::uint32_t& attributes) const {
    const Place place = locate(path, Links::keep);
    if (place.isDevice) {
        attributes = attribute::archive;
        return error::none;
    }
    if (place.error != error::none) return place.error;
    if (disk.at(place.entry).isDeletePending) return error::accessDenied;
    attributes = disk.at(place.entry).attributes;
    return error::none;
}

Error FileSystem::entryFacts(std::string_view path, Facts& facts) const {
    const Place place = locate(path, Links::keep);
    if (place.isDevice) return error::invalidParameter;
    if (place.error != error::none) return place.error;
    const Entry& entry = disk.at(place.entry);
    if (entry.isDeletePending) return error::accessDenied;
    facts = {entry.attributes, sizeOf(entry)};
    return error::none;
}

Error FileSystem::targetFacts(std::string_view path, Facts& facts) const {
    const Place place = locate(path, Links::follow);
    if (place.isDevice) return error::invalidFunction;
    if (place.error != error::none) return place.error;
    const Entry& entry = disk.at(place.entry);
    if (entry.reparseTag == tag::programAlias) return error::linkCannotBeAccessed;
    if (const Error opening = openingError(place.entry, access::none, access::all); opening != error::none)
        return opening;
    facts = {entry.attributes, sizeOf(entry)};
    return error::none;
}

// The search pattern is two characters longer than the folder's path.
Error FileSystem::listFolder(std::string_view folder, std::vector<Listed>& entries) const {
    entries.clear();
    const Place place = locate(folder, Links::follow);
    if (place.isDevice) return error::notADirectory;
    if (place.error == error::fileNotFound) return error::pathNotFound;
    if (place.error == error::invalidName && place.entry != kNoEntry) return error::notADirectory;
    if (place.error != error::none) return place.error;
    const Entry& listed = disk.at(place.entry);
    if (!listed.isFolder()) return error::notADirectory;
    if (utf16Length(fullPathOf(folder, currentFolder()).text) + 2 > settings.longestPath) return error::pathNotFound;
    if (const Error opening = openingError(place.entry, access::read, access::all); opening != error::none)
        return opening;
    if (listed.parent == kNoEntry && listed.children.empty()) return error::fileNotFound;
    for (const EntryId child : listed.children)
        entries.push_back({disk.at(child).name, disk.at(child).attributes});
    if (settings.listingOrder == FileSystemSettings::ListingOrder::reversed)
        std::reverse(entries.begin(), entries.end());
    return error::none;
}

Error FileSystem::fullPath(std::string_view path, std::string& full) const {
    if (path.empty()) return error::pathNotFound;
    FullPath folded = fullPathOf(path, currentFolder());
    full = std::move(folded.text);
    if (folded.endsInSeparator && !full.ends_with('/')) full.push_back('/');
    return error::none;
}

Error FileSystem::finalPath(HandleId file, std::string& path) const {
    const OpenFile* open = openFile(file);
    if (open == nullptr) return error::invalidHandle;
    if (open->isDevice) return error::invalidFunction;
    if (const Error lost = handleError(*open); lost != error::none) return lost;
    const Entry& entry = disk.at(open->entry);
    const Volume& volume = disk.volumes()[entry.volume];
    if (volume.finalNameError != error::none) return volume.finalNameError;
    if (!entry.isNamed) return error::accessDenied;
    path = disk.pathOf(open->entry);
    if (!volume.finalName.empty()) path.replace(0, volume.name.size(), volume.finalName);
    return error::none;
}

}  // namespace vorthmere::update::simulation
