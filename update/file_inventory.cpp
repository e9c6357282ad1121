#include "update/file_inventory.h"

#include <algorithm>
#include <set>

#include "update/ascii.h"
#include "update/decimal.h"
#include "update/failing.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/managed_path.h"
#include "update/metadata_file.h"
#include "update/metadata_keys.h"
#include "update/release_channel.h"
#include "update/sha256_text.h"

namespace vorthmere::update {
namespace {

bool isInWorkFolder(std::string_view key) {
    return key == kWorkFolderName ||
           (key.starts_with(kWorkFolderName) && key.substr(kWorkFolderName.size()).starts_with('/'));
}

bool aFileIsAlsoAFolder(const std::set<std::string, std::less<>>& keys) {
    return std::any_of(keys.begin(), keys.end(), [&keys](std::string_view key) {
        for (std::size_t slash = key.find('/'); slash != std::string_view::npos; slash = key.find('/', slash + 1))
            if (keys.contains(key.substr(0, slash))) return true;
        return false;
    });
}

}  // namespace

std::array<std::string, 5> inventoryHeader(const Manifest& manifest) {
    return {std::string(kInventoryFirstLine), fieldLine(key::archive, manifest.sha256),
            fieldLine(key::release, std::to_string(manifest.release)),
            fieldLine(key::protocol, std::to_string(manifest.protocol)), fieldLine(key::version, manifest.version)};
}

bool parseFileInventory(std::string_view text, const Manifest& manifest, std::vector<InventoryEntry>& entries,
                        std::string& error) {
    entries.clear();
    error.clear();
    if (text.empty() || text.size() > kMaxInventoryBytes || text.find('\0') != std::string_view::npos)
        return fail(error, "File inventory size is invalid.");
    for (const std::string& expected : inventoryHeader(manifest))
        if (nextLine(text) != expected) return fail(error, "File inventory does not match the selected release.");

    std::set<std::string, std::less<>> keys;
    std::string impliedList;
    std::uint64_t total = 0;
    while (!text.empty()) {
        const std::string_view line = nextLine(text);
        const std::size_t firstTab = line.find('\t');
        if (firstTab == std::string_view::npos) return fail(error, "File inventory record is malformed.");
        const std::size_t secondTab = line.find('\t', firstTab + 1);
        if (secondTab == std::string_view::npos) return fail(error, "File inventory record is malformed.");
        const std::string_view path = line.substr(0, firstTab);
        const std::string_view sizeText = line.substr(firstTab + 1, secondTab - firstTab - 1);
        const std::string_view sha256 = line.substr(secondTab + 1);

        std::uint64_t size = 0;
        if (!isSha256Text(sha256) || !isSafeRelativePath(path, false) || !parseDecimal(sizeText, size) ||
            size > kMaxReleaseBytes - total || entries.size() >= kMaxManagedFiles)
            return fail(error, "File inventory contains an unsafe path, size, or checksum.");

        // The path rules refuse the work folder already; this check does not rely on them.
        std::string lowerPath = toAsciiLower(path);
        if (isInWorkFolder(lowerPath) || !keys.insert(std::move(lowerPath)).second)
            return fail(error, "File inventory contains a reserved or duplicate path.");

        total += size;
        impliedList.append(path).push_back('\n');
        entries.push_back({std::string(path), toAsciiLower(sha256), size});
    }

    if (aFileIsAlsoAFolder(keys)) return fail(error, "File inventory has conflicting file and directory paths.");
    if (!keys.contains(kReleaseMarkerName)) return fail(error, "File inventory is missing release metadata.");

    std::vector<std::string> impliedPaths;
    return parseManagedFileList(impliedList, impliedPaths, error);
}

bool loadFileInventory(const std::filesystem::path& path, const Manifest& manifest,
                       std::vector<InventoryEntry>& entries, std::wstring& error) {
    const auto parse = [&](std::string_view text, std::string& fault) {
        return parseFileInventory(text, manifest, entries, fault);
    };
    return loadMetadataFile(path, kMaxInventoryBytes, parse, error);
}

bool namesSameFiles(const std::vector<InventoryEntry>& entries, const std::vector<std::string>& listed) {
    std::set<std::string_view> paths;
    for (const InventoryEntry& entry : entries)
        paths.insert(entry.path);
    return paths == std::set<std::string_view>(listed.begin(), listed.end());
}

}  // namespace vorthmere::update
