#include <algorithm>
#include <utility>

#include "tests/simulation/file_system.h"
#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

constexpr int kMostLinks = 63;
constexpr std::string_view kStartFolder = "C:/";

}  // namespace

std::string_view FileSystem::currentFolder() const {
    const auto at = currentFolders_.find(caller);
    return at == currentFolders_.end() ? kStartFolder : std::string_view(at->second);
}

std::string FileSystem::currentFolderOf(ProcessId process) const {
    const auto at = currentFolders_.find(process);
    return at == currentFolders_.end() ? std::string(kStartFolder) : at->second;
}

std::size_t FileSystem::volumeNamed(std::string_view name) const {
    const std::vector<Volume>& volumes = disk.volumes();
    const auto at = std::find_if(volumes.begin(), volumes.end(),
                                 [name](const Volume& volume) { return isSameName(volume.name, name); });
    return static_cast<std::size_t>(at - volumes.begin());
}

std::string FileSystem::pathBehindLink(EntryId link, std::string_view rest) const {
    const Entry& entry = disk.at(link);
    std::string path = fullPathOf(entry.linkTarget, disk.pathOf(entry.parent)).text;
    if (!rest.empty()) path.append("/").append(rest);
    return path;
}

// Walks from a root until the path ends, a link leads elsewhere, or something is missing.
Error FileSystem::walk(const std::string& fullPath, std::size_t volumeLength, Links links, Place& place,
                       std::string& redirected) const {
    const std::string_view whole = fullPath;
    place.entry = place.folder = kNoEntry;
    const std::size_t volume = volumeNamed(whole.substr(0, volumeLength));
    if (volume == disk.volumes().size()) return error::pathNotFound;
    if (!disk.volumes()[volume].isPresent) return disk.volumes()[volume].absentOpening;
    place.entry = disk.volumes()[volume].root;
    std::string_view rest = whole.substr(std::min(volumeLength + 1, whole.size()));
    while (!rest.empty()) {
        const std::string_view name = takeComponent(rest);
        place.folder = std::exchange(place.entry, kNoEntry);
        if (!disk.at(place.folder).isFolder()) {
            place.folder = kNoEntry;
            return error::pathNotFound;
        }
        place.entry = disk.child(place.folder, name);
        if (rest.empty()) place.name = name;
        if (place.entry == kNoEntry) {
            if (rest.empty()) return error::fileNotFound;
            place.folder = kNoEntry;
            return error::pathNotFound;
        }
        const bool isFollowed = !rest.empty() || links == Links::follow;
        if (isFollowed && tag::isLink(disk.at(place.entry).reparseTag)) {
            redirected = pathBehindLink(place.entry, rest);
            return error::none;
        }
    }
    return error::none;
}

// A device hides a file of its name; a share refuses the name in every call.
void FileSystem::finishPlace(Place& place) const {
    place.isDevice = place.isDevice && place.folder != kNoEntry;
    if (place.isDevice) place.entry = kNoEntry;
    if (place.isDevice && disk.volumes()[disk.at(place.folder).volume].refusesDeviceNames) {
        place.isDevice = false;
        place.error = error::accessDenied;
    }
    const bool isFile = place.entry != kNoEntry && !disk.at(place.entry).isFolder();
    if (isFile && place.endsInSeparator) place.error = error::invalidName;
}

FileSystem::Place FileSystem::locate(std::string_view path, Links links) const {
    Place place;
    if (path.empty()) {
        place.error = error::pathNotFound;
        return place;
    }
    FullPath full = fullPathOf(path, currentFolder());
    place.endsInSeparator = full.endsInSeparator;
    if (full.text.size() > settings.longestPath && !full.isExtended && utf16Length(full.text) > settings.longestPath) {
        place.error = error::pathNotFound;
        return place;
    }
    std::string_view rest = std::string_view(full.text).substr(full.volumeLength);
    std::string_view last;
    while (!rest.empty() && place.error == error::none) {
        last = takeComponent(rest);
        place.error = nameError(last);
    }
    if (place.error != error::none) return place;
    const bool mayBeDevice = !full.isExtended && !last.empty();
    place.isDevice =
        mayBeDevice && (settings.deviceNamesWithExtension ? isDeviceName(last, true) : isDeviceName(path, false));
    for (int followed = 0; followed <= kMostLinks; ++followed) {
        std::string redirected;
        place.error = walk(full.text, full.volumeLength, links, place, redirected);
        if (redirected.empty()) {
            finishPlace(place);
            return place;
        }
        full = fullPathOf(redirected, kStartFolder);
    }
    place.error = error::linkCannotBeResolved;
    place.entry = kNoEntry;
    place.folder = kNoEntry;
    return place;
}

Error FileSystem::creationError(const Place& place) const {
    if (place.folder == kNoEntry) return place.error;
    const Volume& volume = disk.volumes()[disk.at(place.folder).volume];
    if (volume.isWriteProtected) return error::writeProtected;
    if (disk.at(place.folder).isDeletePending) return error::accessDenied;
    if (disk.at(place.folder).refusal != error::none) return disk.at(place.folder).refusal;
    return disk.hasRoom(disk.at(place.folder).volume, Disk::kEntryBytes) ? error::none : error::diskFull;
}

}  // namespace vorthmere::update::simulation
