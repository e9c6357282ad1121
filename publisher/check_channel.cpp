#include "publisher/check_channel.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>

#include "publisher/channel.h"
#include "publisher/in_quotes.h"
#include "publisher/package_reader.h"
#include "publisher/parallel_work.h"
#include "publisher/path_rules.h"
#include "publisher/release_texts.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/metadata_file.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

using Entries = std::vector<update::InventoryEntry>;

std::string faultOf(FileState state, const fs::path& path, std::uint64_t size) {
    const std::string name = inQuotes(path.filename());
    std::error_code failure;
    switch (state) {
        case FileState::right:
            return {};
        case FileState::missing:
            return name + " is missing.";
        case FileState::wrongSize:
            return name + " has " + std::to_string(fs::file_size(path, failure)) + " bytes instead of " +
                   std::to_string(size) + ".";
        case FileState::corrupt:
            return name + " is corrupt: its content does not have the announced SHA-256.";
        case FileState::notAFile:
            return name + " is not a regular file.";
        case FileState::unreadable:
            break;
    }
    return name + " cannot be read.";
}

class ChannelCheck {
public:
    ChannelCheck(const fs::path& channel, Console& console) : channel_(channel), console_(console) {}

    std::vector<std::string> run() {
        std::optional<update::Manifest> manifest;
        std::string fault;
        if (!readPublishedManifest(channel_, manifest, fault)) return {fault};
        if (!manifest) return {inQuotes(update::kManifestName) + " is missing."};

        Entries entries;
        const fs::path inventory = channel_ / (packageNameOf(*manifest) + std::string(update::kInventorySuffix));
        if (!readInventory(inventory, *manifest, entries, fault))
            faults_.push_back(fault);
        else if (fault = clashOnWindows(pathsOf(entries)); !fault.empty())
            faults_.push_back(inQuotes(inventory.filename()) + ": " + fault);

        checkPackage(*manifest, entries);
        if (!entries.empty()) checkObjects(entries);
        return faults_;
    }

private:
    void checkPackage(const update::Manifest& manifest, const Entries& entries) {
        const fs::path package = channel_ / packageNameOf(manifest);
        console_.beginStep("Checking the complete package", manifest.size + bytesOf(entries));
        const FileState state = stateOfFile(package, manifest.size, manifest.sha256, done_);
        std::string fault = faultOf(state, package, manifest.size);
        // What a sound package holds can be judged only by a sound inventory.
        if (fault.empty() && !entries.empty() && !verifyPackage(package, entries, done_, fault))
            fault = inQuotes(package.filename()) + ": " + fault;
        console_.endStep();
        if (!fault.empty()) faults_.push_back(fault);
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
                const FileState state = stateOfFile(object, entry.size, entry.sha256, done_);
                if (state == FileState::right) return true;
                const std::lock_guard lock(found);
                objectFaults.insert(inQuotes(entry.path) + ": " + faultOf(state, object, entry.size));
                return true;
            },
            ignored));
        console_.endStep();
        if (objectFaults.empty()) checkManagedFileList(entries);
        faults_.insert(faults_.end(), objectFaults.begin(), objectFaults.end());
    }

    void checkManagedFileList(const Entries& entries) {
        const auto list = std::find_if(entries.begin(), entries.end(), [](const update::InventoryEntry& entry) {
            return entry.path == update::kManagedFileListName;
        });
        std::string text;
        std::wstring unreadable;
        std::string fault;
        std::vector<std::string> listed;
        const std::vector<std::string> paths = pathsOf(entries);
        if (!update::readMetadataFile(channel_ / objectName(list->sha256), text, unreadable,
                                      update::kMaxManagedFileListBytes) ||
            !update::parseManagedFileList(text, listed, fault))
            faults_.push_back(inQuotes(list->path) + " would be refused by the updater.");
        else if (std::set(paths.begin(), paths.end()) != std::set(listed.begin(), listed.end()))
            faults_.push_back(inQuotes(list->path) + " and the file inventory do not name the same files.");
    }

    static std::vector<std::string> pathsOf(const Entries& entries) {
        std::vector<std::string> paths;
        paths.reserve(entries.size());
        for (const update::InventoryEntry& entry : entries)
            paths.push_back(entry.path);
        return paths;
    }

    static std::uint64_t bytesOf(const Entries& entries) {
        std::uint64_t bytes = 0;
        for (const update::InventoryEntry& entry : entries)
            bytes += entry.size;
        return bytes;
    }

    const fs::path& channel_;
    Console& console_;
    const BytesDone done_ = [this](std::uint64_t count) { console_.advance(count); };
    std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> checkChannel(const fs::path& channel, Console& console) {
    return ChannelCheck(channel, console).run();
}

}  // namespace vorthmere::publish
