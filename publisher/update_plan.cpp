#include "publisher/update_plan.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <system_error>

#include "publisher/channel.h"
#include "publisher/in_quotes.h"
#include "publisher/release_content.h"
#include "publisher/release_texts.h"
#include "update/ascii.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/metadata_file.h"
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

bool listEntry(const fs::directory_entry& entry, const std::string& path, const std::set<std::string>& wantedKeys,
               std::vector<ReleaseFile>& files, std::string& error) {
    std::error_code failure;
    const fs::file_type type = entry.symlink_status(failure).type();
    if (type == fs::file_type::symlink && wantedKeys.contains(update::toAsciiLower(path))) {
        error = inQuotes(path) + " is a symbolic link; the updater refuses to go through links.";
        return false;
    }
    const std::uintmax_t size = type == fs::file_type::regular ? entry.file_size(failure) : 0;
    if (failure) {
        error = inQuotes(entry.path()) + " cannot be read: " + failure.message() + ".";
        return false;
    }
    if (type == fs::file_type::regular) files.push_back({{path, {}, size}, entry.path(), {}});
    return true;
}

/// Unlike a game folder, an installation may hold anything beside the files of the release.
bool listInstallation(const fs::path& folder, const Entries& wanted, std::vector<ReleaseFile>& files,
                      std::string& error) {
    const std::set<std::string> wantedKeys = keysOf(wanted);
    std::error_code failure;
    fs::recursive_directory_iterator walk(folder, failure);
    for (; !failure && walk != fs::recursive_directory_iterator(); walk.increment(failure)) {
        const std::string path = walk->path().lexically_relative(folder).generic_string();
        if (update::toAsciiLower(path) == update::kWorkFolderName) walk.disable_recursion_pending();
        if (!listEntry(*walk, path, wantedKeys, files, error)) return false;
    }
    if (failure) error = "The folder " + inQuotes(folder) + " cannot be read: " + failure.message() + ".";
    return !failure;
}

/// @param managed receives the paths that the updater removes unless the new release holds them
bool readManagedPaths(std::vector<ReleaseFile>& files, std::vector<std::string>& managed, std::string& error) {
    const auto list = findFile(files, update::kManagedFileListName);
    if (list != files.end()) {
        std::string text;
        std::wstring unreadable;
        std::string fault = "it cannot be read, is empty or too large.";
        if (update::readMetadataFile(list->source, text, unreadable, update::kMaxManagedFileListBytes) &&
            update::parseManagedFileList(text, managed, fault))
            return true;
        error = "The updater would refuse " + inQuotes(list->source) + ": " + fault;
        return false;
    }

    // What the release that was built from this folder has in addition; its number and thus its marker are not known.
    for (const ReleaseFile& file : files)
        managed.push_back(file.entry.path);
    if (findFile(files, update::kReleaseMarkerName) == files.end()) managed.emplace_back(update::kReleaseMarkerName);
    managed.emplace_back(update::kManagedFileListName);
    std::sort(managed.begin(), managed.end());
    const std::string text = managedFileListText(managed);
    files.push_back({{std::string(update::kManagedFileListName), {}, text.size()}, {}, text});
    return true;
}

bool readInstallation(const fs::path& folder, const Entries& wanted, Console& console, Entries& installed,
                      std::vector<std::string>& managed, std::string& error) {
    std::vector<ReleaseFile> files;
    if (!listInstallation(folder, wanted, files, error) || !readManagedPaths(files, managed, error)) return false;
    console.beginStep("Reading " + countOf(files.size(), "installed file"), totalBytes(files));
    const bool hashed = hashReleaseFiles(
        files, [&console](std::uint64_t count) { console.advance(count); }, error);
    console.endStep();
    installed = inventoryOf(files);
    return hashed;
}

}  // namespace

bool planUpdate(const fs::path& from, const fs::path& channel, Console& console, UpdatePlan& plan, std::string& error) {
    plan = {};
    std::optional<update::Manifest> target;
    if (!readPublishedManifest(channel, target, error)) return false;
    if (!target) {
        error = "The channel " + inQuotes(channel) + " offers no release: it has no " +
                inQuotes(update::kManifestName) + ".";
        return false;
    }
    plan.target = *target;

    std::error_code failure;
    const fs::file_type fromType = fs::status(from, failure).type();
    if (fromType == fs::file_type::not_found) {
        error = inQuotes(from) + " does not exist.";
        return false;
    }

    Entries wanted;
    Entries installed;
    const std::string inventory = packageNameOf(plan.target) + std::string(update::kInventorySuffix);
    const bool canBeIncremental = readInventory(channel / inventory, plan.target, wanted, plan.packageReason);

    std::vector<std::string> managed;
    const bool isFolder = fromType == fs::file_type::directory;
    if (isFolder) {
        if (!readInstallation(from, wanted, console, installed, managed, error)) return false;
    } else {
        update::Manifest older;
        if (!readInventoryAlone(from, older, installed, error)) return false;
        plan.fromRelease = older.release;
    }
    if (!canBeIncremental) return true;

    plan.difference = compareReleases(installed, wanted);
    if (isFolder)
        std::erase_if(plan.difference.removed, [&managed](const std::string& path) {
            return std::find(managed.begin(), managed.end(), path) == managed.end();
        });
    plan.incremental = updatesIncrementally(plan.difference, plan.target);
    return true;
}

}  // namespace vorthmere::publish
