#include "publisher/release_texts.h"

#include <algorithm>
#include <string_view>

#include "update/release_channel.h"

namespace vorthmere::publish {

std::string packageName(std::uint32_t release) {
    return std::string(update::kPackageNamePrefix) + "release-" + std::to_string(release) +
           std::string(update::kPackageNameSuffix);
}

std::string inventoryName(std::uint32_t release) {
    return packageName(release) + std::string(update::kInventorySuffix);
}

std::string packageNameOf(const update::Manifest& manifest) {
    return manifest.url.substr(manifest.url.rfind('/') + 1);
}

// The updater moves files in in the order of this list. While the game's program is still missing, a run that was cut
// off can neither be mistaken for an installation nor be played.
std::string managedFileListText(std::vector<std::string> paths) {
    const auto isEssential = [](std::string_view path) {
        return path == update::kManagedFileListName || path == update::kUpdaterExecutableName ||
               path == update::kGameExecutableName;
    };
    std::stable_partition(paths.begin(), paths.end(), [&](const std::string& path) { return !isEssential(path); });
    std::string text;
    for (const std::string& path : paths)
        text.append(path).push_back('\n');
    return text;
}

std::string releaseMarkerText(const update::Manifest& manifest) {
    return "release=" + std::to_string(manifest.release) + "\nversion=" + manifest.version +
           "\nprotocol=" + std::to_string(manifest.protocol) + "\n";
}

std::string inventoryText(const update::Manifest& manifest, const std::vector<update::InventoryEntry>& entries) {
    std::string text = "KVN-FILES/1\narchive=" + manifest.sha256 + "\nrelease=" + std::to_string(manifest.release) +
                       "\nprotocol=" + std::to_string(manifest.protocol) + "\nversion=" + manifest.version + "\n";
    for (const update::InventoryEntry& entry : entries)
        text += entry.path + "\t" + std::to_string(entry.size) + "\t" + entry.sha256 + "\n";
    return text;
}

std::string manifestText(const update::Manifest& manifest) {
    return "KVN-UPDATE/1\nrelease=" + std::to_string(manifest.release) + "\nversion=" + manifest.version +
           "\nprotocol=" + std::to_string(manifest.protocol) + "\nmandatory=" + (manifest.mandatory ? "1" : "0") +
           "\nsize=" + std::to_string(manifest.size) + "\nsha256=" + manifest.sha256 + "\nurl=" + manifest.url +
           "\nnotes=" + manifest.notes + "\n";
}

std::string listingText(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text.append(name).append("\r\n");
    return text;
}

}  // namespace vorthmere::publish
