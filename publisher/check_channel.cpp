#include "publisher/check_channel.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>

#include "publisher/channel.h"
#include "publisher/channel_file.h"
#include "publisher/channel_listing.h"
#include "publisher/entry_facts.h"
#include "publisher/folder_changes.h"
#include "publisher/in_quotes.h"
#include "publisher/package_reader.h"
#include "publisher/parallel_work.h"
#include "publisher/path_rules.h"
#include "publisher/release_texts.h"
#include "update/managed_file_list.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

using Entries = std::vector<update::InventoryEntry>;

std::vector<std::string> pathsOf(const Entries& entries) {
    std::vector<std::string> paths;
    paths.reserve(entries.size());
    for (const update::InventoryEntry& entry : entries)
        paths.push_back(entry.path);
    return paths;
}

std::uint64_t bytesOf(const Entries& entries) {
    std::uint64_t bytes = 0;
    for (const update::InventoryEntry& entry : entries)
        bytes += entry.size;
    return bytes;
}

class ChannelCheck {
public:
    ChannelCheck(const fs::path& channel, bool allowFolderChanges, Console& console)
        : channel_(channel), allowFolderChanges_(allowFolderChanges), console_(console) {}

    ChannelReport run() {
        std::optional<update::Manifest> manifest;
        std::string fault;
        if (!readPublishedManifest(channel_, manifest, fault)) return {0, {fault}, {}};
        if (!manifest) return {0, {inQuotes(update::kManifestName) + " is missing."}, {}};
        report_.release = manifest->release;
        checkPermissions();
        checkTextFile(channel_ / update::kManifestName);

        Entries entries;
        const fs::path inventory = channel_ / inventoryNameOf(*manifest);
        if (!readInventory(inventory, *manifest, entries, fault)) {
            report_.faults.push_back(fault);
        } else {
            checkTextFile(inventory);
            for (const std::string& clash : clashesOnWindows(pathsOf(entries)))
                report_.faults.push_back(inQuotes(inventory.filename()) + ": " + clash);
            checkFolderChanges({manifest->release, entries});
        }
        checkPackage(*manifest, entries);
        if (!entries.empty()) checkObjects(entries);
        return report_;
    }

private:
    void checkPermissions() {
        std::error_code failure;
        if (!factsOfTarget(channel_, failure).everybodyMayRead)
            report_.faults.push_back(
                "The channel folder may not be entered by every account, so that a web server "
                "may be unable to hand out what is in it.");
    }

    void checkTextFile(const fs::path& file) {
        const std::string fault = faultOf(lookAtFile(file), file, 0);
        if (!fault.empty()) report_.faults.push_back(fault);
    }

    void checkFolderChanges(const ListedRelease& offered) {
        ChannelListing listing;
        std::vector<ListedRelease> older;
        std::string fault;
        if (!listChannel(channel_, listing, fault)) report_.notes.push_back(fault);
        for (const std::string& unreadable : readReleasesBelow(offered.release, channel_, listing, older))
            report_.notes.push_back(unreadable);
        for (const std::string& change : folderChanges(older, offered))
            (allowFolderChanges_ ? report_.notes : report_.faults).push_back(change);
    }

    void checkPackage(const update::Manifest& manifest, const Entries& entries) {
        const fs::path package = channel_ / packageNameOf(manifest);
        console_.beginStep("Checking the complete package", manifest.size + bytesOf(entries));
        const ChannelFile found = compareFile(package, manifest.size, manifest.sha256, done_);
        std::string fault = faultOf(found, package, manifest.size);
        // Only a sound inventory tells what the package should hold.
        PackageFacts facts;
        if (fault.empty() && !entries.empty() && !verifyPackage(package, entries, {}, facts, done_, fault))
            fault = inQuotes(package.filename()) + ": " + fault;
        console_.endStep();
        if (!fault.empty()) report_.faults.push_back(fault);
    }

    void checkObjects(const Entries& entries) {
        std::map<std::string_view, const update::InventoryEntry*> distinct;
        for (const update::InventoryEntry& entry : entries)
            distinct.emplace(entry.sha256, &entry);
        std::vector<const update::InventoryEntry*> contents;
        std::uint64_t bytes = 0;
        for (const auto& [sha256, entry] : distinct) {
            contents.push_back(entry);
            bytes += entry->size;
        }

        std::mutex found;
        std::set<std::string> objectFaults;
        console_.beginStep("Checking " + countOf(contents.size(), "object"), bytes);
        std::string ignored;
        static_cast<void>(forEachInParallel(
            contents.size(),
            [&](std::size_t index, std::string&) {
                const update::InventoryEntry& entry = *contents[index];
                const fs::path object = channel_ / objectName(entry.sha256);
                const ChannelFile stored = compareFile(object, entry.size, entry.sha256, done_);
                if (stored.isRight()) return true;
                const std::lock_guard lock(found);
                objectFaults.insert(inQuotes(entry.path) + ": " + faultOf(stored, object, entry.size));
                return true;
            },
            ignored));
        console_.endStep();
        if (objectFaults.empty()) checkManagedFileList(entries);
        report_.faults.insert(report_.faults.end(), objectFaults.begin(), objectFaults.end());
    }

    void checkManagedFileList(const Entries& entries) {
        const auto list = std::find_if(entries.begin(), entries.end(), [](const update::InventoryEntry& entry) {
            return entry.path == update::kManagedFileListName;
        });
        std::vector<std::string> listed;
        std::wstring refusal;
        if (!update::loadManagedFileListFrom(channel_ / objectName(list->sha256), listed, refusal))
            report_.faults.push_back(inQuotes(list->path) + " would be refused by the updater.");
        else if (!update::namesSameFiles(entries, listed))
            report_.faults.push_back(inQuotes(list->path) + " and the file inventory do not name the same files.");
    }

    const fs::path& channel_;
    const bool allowFolderChanges_;
    Console& console_;
    const BytesDone done_ = [this](std::uint64_t count) { console_.advance(count); };
    ChannelReport report_;
};

}  // namespace

ChannelReport checkChannel(const fs::path& channel, bool allowFolderChanges, Console& console) {
    return ChannelCheck(channel, allowFolderChanges, console).run();
}

}  // namespace vorthmere::publish
