#include "publisher/installed_release.h"

#include <algorithm>
#include <optional>
#include <set>
#include <system_error>

#include "publisher/channel.h"
#include "publisher/entry_facts.h"
#include "publisher/folder_walk.h"
#include "publisher/in_quotes.h"
#include "publisher/release_content.h"
#include "publisher/release_hashing.h"
#include "publisher/release_texts.h"
#include "update/ascii.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/metadata_file.h"
#include "update/metadata_text.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

using Entries = std::vector<update::InventoryEntry>;

std::vector<ReleaseFile>::iterator findFile(std::vector<ReleaseFile>& files, std::string_view path) {
    return std::find_if(files.begin(), files.end(),
                        [path](const ReleaseFile& file) { return file.entry.path == path; });
}

/// The paths of the wanted files and of the folders above them, in lower case.
std::set<std::string> keysOf(const Entries& wanted) {
    std::set<std::string> keys;
    for (const update::InventoryEntry& entry : wanted) {
        const std::string key = update::toAsciiLower(entry.path);
        keys.insert(key);
        for (std::size_t slash = key.find('/'); slash != std::string::npos; slash = key.find('/', slash + 1))
            keys.insert(key.substr(0, slash));
    }
    return keys;
}

/// Unlike a game folder, an installation may hold anything besides the files of the release.
bool listInstallation(const fs::path& folder, const Entries& wanted, std::vector<ReleaseFile>& files,
                      std::string& error) {
    const std::set<std::string> wantedKeys = keysOf(wanted);
    std::string linkFault;
    const auto take = [&](const WalkedEntry& entry) {
        const std::string key = update::toAsciiLower(entry.path);
        if (entry.facts.kind == EntryKind::link && wantedKeys.contains(key) && linkFault.empty())
            linkFault = inQuotes(entry.path) + " is a symbolic link; the updater refuses to go through links.";
        if (entry.facts.kind == EntryKind::file) files.push_back({{entry.path, {}, entry.facts.size}, entry.place, {}});
        return key != update::kWorkFolderName;
    };
    if (!walkFolder(folder, take, error)) return false;
    error = linkFault;
    return linkFault.empty();
}

/// @param managed receives the paths that the updater removes unless the new release holds them
bool readManagedPaths(std::vector<ReleaseFile>& files, std::vector<std::string>& managed, std::string& error) {
    const auto list = findFile(files, update::kManagedFileListName);
    if (list != files.end()) {
        std::string fault = "it cannot be read, is empty or too large.";
        const auto parse = [&](std::string_view text, std::string&) {
            return update::parseManagedFileList(text, managed, fault);
        };
        std::wstring ignored;
        if (update::loadMetadataFile(list->source, update::kMaxManagedFileListBytes, parse, ignored)) return true;
        error = "The updater would refuse " + inQuotes(list->source) + ": " + fault;
        return false;
    }

    // The release that was built from this folder also has a list and a marker. The marker's content is unknown.
    for (const ReleaseFile& file : files)
        managed.push_back(file.entry.path);
    if (findFile(files, update::kReleaseMarkerName) == files.end()) managed.emplace_back(update::kReleaseMarkerName);
    managed.emplace_back(update::kManagedFileListName);
    std::sort(managed.begin(), managed.end());
    const std::string text = update::managedFileListText(managed);
    files.push_back({{std::string(update::kManagedFileListName), {}, text.size()}, {}, text});
    return true;
}

bool hasFile(const std::vector<ReleaseFile>& files, std::string_view path) {
    return std::any_of(files.begin(), files.end(), [path](const ReleaseFile& file) { return file.entry.path == path; });
}

bool isInstallationOrGame(const fs::path& folder, const std::vector<ReleaseFile>& files, std::string& error) {
    const bool isGame = hasFile(files, update::kGameExecutableName) && hasFile(files, update::kUpdaterExecutableName);
    if (isGame || hasFile(files, update::kManagedFileListName)) return true;
    error = inQuotes(folder) + " is no installation (it has no " + inQuotes(update::kManagedFileListName) +
            "), no game folder (it has no " + inQuotes(update::kGameExecutableName) + " or no " +
            inQuotes(update::kUpdaterExecutableName) + ") and no channel (it has no " +
            inQuotes(update::kManifestName) + ").";
    return false;
}

bool readFolder(const fs::path& folder, const Entries& wanted, Console& console, InstalledRelease& installed,
                std::string& error) {
    std::vector<ReleaseFile> files;
    if (!listInstallation(folder, wanted, files, error) || !isInstallationOrGame(folder, files, error) ||
        !readManagedPaths(files, installed.managed, error))
        return false;
    std::optional<PreviousPackage> none;
    const bool hashed = hashReleaseFiles(files, none, console, error);
    installed.holdsOtherFiles = true;
    installed.entries = inventoryOf(files);
    return hashed;
}

bool readOffer(const fs::path& channel, const update::Manifest& offered, InstalledRelease& installed,
               std::string& error) {
    installed.release = offered.release;
    return readInventory(channel / inventoryNameOf(offered), offered, installed.entries, error);
}

bool readAlone(const fs::path& inventory, InstalledRelease& installed, std::string& error) {
    update::Manifest header;
    if (!readInventoryAlone(inventory, header, installed.entries, error)) return false;
    installed.release = header.release;
    return true;
}

}  // namespace

bool readInstalledRelease(const fs::path& from, const Entries& wanted, Console& console, InstalledRelease& installed,
                          std::string& error) {
    installed = {};
    std::error_code failure;
    switch (factsOfTarget(from, failure).kind) {
        case EntryKind::missing:
            error = inQuotes(from) + (failure ? " cannot be read: " + failure.message() + "." : " does not exist.");
            return false;
        case EntryKind::folder:
            break;
        default:
            return readAlone(from, installed, error);
    }
    std::optional<update::Manifest> offered;
    if (!readPublishedManifest(from, offered, error)) return false;
    return offered ? readOffer(from, *offered, installed, error) : readFolder(from, wanted, console, installed, error);
}

}  // namespace vorthmere::publish
