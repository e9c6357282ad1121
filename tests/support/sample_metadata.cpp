#include "tests/support/sample_metadata.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "update/release_channel.h"

namespace vorthmere::update::testing {
namespace {

Lines::iterator onlyLineThatBegins(Lines& lines, std::string_view prefix) {
    const auto begins = [prefix](const std::string& line) { return line.starts_with(prefix); };
    if (std::count_if(lines.begin(), lines.end(), begins) != 1)
        throw std::invalid_argument("not exactly one line begins with \"" + std::string(prefix) + "\"");
    return std::find_if(lines.begin(), lines.end(), begins);
}

}  // namespace

std::string joinLines(const Lines& lines, std::string_view lineEnd, bool endLastLine) {
    std::string text;
    for (const std::string& line : lines)
        text.append(line).append(lineEnd);
    if (!endLastLine && !lines.empty()) text.resize(text.size() - lineEnd.size());
    return text;
}

Lines withLine(Lines lines, std::string_view prefix, std::string replacement) {
    *onlyLineThatBegins(lines, prefix) = std::move(replacement);
    return lines;
}

Lines withoutLine(Lines lines, std::string_view prefix) {
    lines.erase(onlyLineThatBegins(lines, prefix));
    return lines;
}

std::string sampleDigest(char digit) {
    return std::string(64, digit);
}

Manifest sampleManifest() {
    Manifest manifest;
    manifest.release = 42;
    manifest.protocol = 7;
    manifest.mandatory = true;
    manifest.size = 123456789;
    manifest.version = "0.9.3 alpha";
    manifest.url = std::string(kDownloadBaseUrl) + "KVN-release-42.zip";
    manifest.sha256 = sampleDigest('a');
    manifest.notes = "Balance changes and fixes.";
    return manifest;
}

Lines manifestLines(const Manifest& manifest) {
    return {"KVN-UPDATE/1",
            "release=" + std::to_string(manifest.release),
            "version=" + manifest.version,
            "protocol=" + std::to_string(manifest.protocol),
            std::string("mandatory=") + (manifest.mandatory ? "1" : "0"),
            "size=" + std::to_string(manifest.size),
            "sha256=" + manifest.sha256,
            "url=" + manifest.url,
            "notes=" + manifest.notes};
}

Lines samplePaths() {
    return {"KVN_MANAGED_FILES.txt", "Vorthmere.exe", "KVNUpdater.exe", "kvn_release.txt", "data/maps.pak"};
}

std::vector<InventoryEntry> sampleEntries() {
    std::vector<InventoryEntry> entries;
    for (const std::string& path : samplePaths()) {
        const auto index = entries.size();
        entries.push_back({path, sampleDigest("0123456789abcdef"[index]), 1000 + index});
    }
    return entries;
}

Lines inventoryHeaderLines(const Manifest& manifest) {
    return {"KVN-FILES/1", "archive=" + manifest.sha256, "release=" + std::to_string(manifest.release),
            "protocol=" + std::to_string(manifest.protocol), "version=" + manifest.version};
}

std::string inventoryLine(const InventoryEntry& entry) {
    return entry.path + '\t' + std::to_string(entry.size) + '\t' + entry.sha256;
}

Lines inventoryLines(const Manifest& manifest, const std::vector<InventoryEntry>& entries) {
    Lines lines = inventoryHeaderLines(manifest);
    for (const InventoryEntry& entry : entries)
        lines.push_back(inventoryLine(entry));
    return lines;
}

}  // namespace vorthmere::update::testing
