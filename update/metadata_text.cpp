#include "update/metadata_text.h"

#include <algorithm>

#include "update/metadata_keys.h"
#include "update/release_channel.h"

namespace vorthmere::update {

std::string manifestText(const Manifest& manifest) {
    std::string text(kManifestHeader);
    for (const std::string& line :
         {fieldLine(key::release, std::to_string(manifest.release)), fieldLine(key::version, manifest.version),
          fieldLine(key::protocol, std::to_string(manifest.protocol)),
          fieldLine(key::mandatory, manifest.mandatory ? "1" : "0"),
          fieldLine(key::size, std::to_string(manifest.size)), fieldLine(key::sha256, manifest.sha256),
          fieldLine(key::url, manifest.url), fieldLine(key::notes, manifest.notes)})
        text.append("\n").append(line);
    return text.append("\n");
}

std::string inventoryText(const Manifest& manifest, const std::vector<InventoryEntry>& entries) {
    std::string text;
    for (const std::string& line : inventoryHeader(manifest))
        text.append(line).push_back('\n');
    for (const InventoryEntry& entry : entries)
        text += entry.path + '\t' + std::to_string(entry.size) + '\t' + entry.sha256 + '\n';
    return text;
}

// The updater moves files in in the order of the list. While a required file is missing, nobody can take an installation
// that was cut off for a whole one, nor play it.
std::string managedFileListText(std::vector<std::string> paths) {
    std::stable_partition(paths.begin(), paths.end(), [](const std::string& path) {
        return std::find(kRequiredFiles.begin(), kRequiredFiles.end(), path) == kRequiredFiles.end();
    });
    std::string text;
    for (const std::string& path : paths)
        text.append(path).push_back('\n');
    return text;
}

}  // namespace vorthmere::update
