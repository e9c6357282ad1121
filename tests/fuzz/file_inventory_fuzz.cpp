#include "update/file_inventory.h"

#include <algorithm>
#include <set>

#include "fuzz_target.h"
#include "update/managed_file_list.h"
#include "update/managed_path.h"

namespace vorthmere::update::fuzz {
namespace {

// The release that the seeds belong to.
Manifest selectedRelease() {
    Manifest manifest;
    manifest.release = 42;
    manifest.protocol = 7;
    manifest.version = "0.9.3 alpha";
    manifest.sha256 = "00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff";
    return manifest;
}

std::string render(const Manifest& manifest, const std::vector<InventoryEntry>& entries, std::string_view lineEnd) {
    std::vector<std::string> lines = {"KVN-FILES/1", "archive=" + manifest.sha256,
                                      "release=" + std::to_string(manifest.release),
                                      "protocol=" + std::to_string(manifest.protocol), "version=" + manifest.version};
    for (const InventoryEntry& entry : entries)
        lines.push_back(entry.path + "\t" + std::to_string(entry.size) + "\t" + entry.sha256);
    return joinLines(lines, lineEnd);
}

void requireSame(const std::vector<InventoryEntry>& entries, std::string_view lineEnd, std::string_view property) {
    const std::string text = render(selectedRelease(), entries, lineEnd);
    std::vector<InventoryEntry> again;
    std::string error;
    require(parseFileInventory(text, selectedRelease(), again, error) && again == entries, property, text);
}

void requireRefused(const std::vector<InventoryEntry>& entries, std::string_view sentence) {
    const std::string text = render(selectedRelease(), entries, "\n");
    std::vector<InventoryEntry> ignored;
    std::string error;
    require(!parseFileInventory(text, selectedRelease(), ignored, error) && error == sentence, sentence, text);
}

void requireOtherReleasesToRefuse(const std::vector<InventoryEntry>& entries) {
    std::vector<Manifest> others(4, selectedRelease());
    others[0].release = 4;
    others[1].protocol = 77;
    others[2].version += ' ';
    others[3].sha256.front() = 'f';
    for (const Manifest& other : others) {
        std::vector<InventoryEntry> ignored;
        std::string error;
        const std::string text = render(selectedRelease(), entries, "\n");
        require(!parseFileInventory(text, other, ignored, error) &&
                    error == "File inventory does not match the selected release.",
                "an inventory belongs to one release only", text);
    }
}

void requireLimits(const std::vector<InventoryEntry>& entries, std::string_view input) {
    std::uint64_t total = 0;
    std::set<std::string> keys;
    for (const InventoryEntry& entry : entries) {
        require(isSafeRelativePath(entry.path, false), "every path of an accepted inventory is safe", input);
        require(keys.insert(lowerCase(entry.path)).second, "no two paths are the same file", input);
        require(entry.sha256.size() == 64 && entry.sha256.find_first_not_of("0123456789abcdef") == std::string::npos,
                "a digest has 64 lower-case hexadecimal digits", input);
        require(entry.size <= 2147483648U, "no file is larger than 2 GiB", input);
        total += entry.size;
    }
    require(entries.size() >= 4 && entries.size() <= 1024, "an accepted inventory has 4 to 1024 files", input);
    require(total <= 2147483648U, "a release has at most 2 GiB", input);
    require(keys.contains("kvn_release.txt"), "an accepted inventory lists the release's marker", input);
    // In a sorted set everything below a folder follows its name and "/".
    for (const std::string& key : keys) {
        const auto below = keys.lower_bound(key + "/");
        require(below == keys.end() || !below->starts_with(key + "/"), "no file is also a folder", input);
    }
}

}  // namespace

bool tryInput(std::string_view input) {
    const std::string text = expandRepeatedLines(input);
    std::vector<InventoryEntry> entries = {{"of an earlier use", "", 0}};
    std::string error = "of an earlier use";
    const bool accepted = parseFileInventory(text, selectedRelease(), entries, error);
    requireSentenceOnlyOnFailure(accepted, error, input);
    if (!accepted) return false;

    require(text.size() <= 393216, "an accepted inventory has at most 393216 bytes", input);
    requireLimits(entries, input);
    std::vector<std::string> paths;
    for (const InventoryEntry& entry : entries)
        paths.push_back(entry.path);
    std::vector<std::string> listed;
    require(parseManagedFileList(joinLines(paths, "\n"), listed, error) && listed == paths,
            "the files of an accepted inventory make a managed-file list", input);

    requireSame(entries, "\n", "an accepted inventory written again reads the same");
    requireSame(entries, "\r\n", "the kind of line end does not matter");
    requireOtherReleasesToRefuse(entries);

    std::vector<InventoryEntry> changed = entries;
    std::reverse(changed.begin(), changed.end());
    requireSame(changed, "\n", "the order of the records does not matter");
    if (entries.size() < 1024 && entries.front().path.size() < 230) {
        changed = entries;
        changed.push_back({entries.front().path + "/below", entries.front().sha256, 0});
        requireRefused(changed, "File inventory has conflicting file and directory paths.");
        changed.back().path = lowerCase(entries.front().path);
        requireRefused(changed, "File inventory contains a reserved or duplicate path.");
    }
    return true;
}

}  // namespace vorthmere::update::fuzz
