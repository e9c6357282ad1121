#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "update/manifest.h"

namespace vorthmere::update {

/// One file of a release.
struct InventoryEntry {
    std::string path;        ///< managed relative path, letter case as written
    std::string sha256;      ///< digest of the content, 64 lower-case hexadecimal digits
    std::uint64_t size = 0;  ///< bytes, may be 0

    friend bool operator==(const InventoryEntry&, const InventoryEntry&) = default;
};

/// The first line of a file inventory.
inline constexpr std::string_view kInventoryFirstLine = "KVN-FILES/1";

/// The first five lines of a release's inventory; they bind it to its manifest.
[[nodiscard]] std::array<std::string, 5> inventoryHeader(const Manifest& manifest);

/// Parses a file inventory, format "KVN-FILES/1", and checks that it belongs to one release.
///
/// @param text     the file's bytes
/// @param manifest the release, whose digest, number, protocol and version the header must repeat
/// @param entries  emptied on entry; on success at most kMaxManagedFiles entries in the order of the lines, of at most
///                 kMaxReleaseBytes together, no path equal to or a parent of another in any letter case; not to be
///                 used after a failure
/// @param error    cleared on entry; on failure the sentence of the first fault found
/// @return true when the inventory is valid, names `kvn_release.txt`, and its paths make a valid managed-file list.
///         False with "File inventory size is invalid.", "File inventory does not match the selected release.", "File
///         inventory record is malformed.", "File inventory contains an unsafe path, size, or checksum.", "File
///         inventory contains a reserved or duplicate path.", "File inventory has conflicting file and directory
///         paths.", "File inventory is missing release metadata.", or parseManagedFileList()'s sentence.
[[nodiscard]] bool parseFileInventory(std::string_view text, const Manifest& manifest,
                                      std::vector<InventoryEntry>& entries, std::string& error);

/// Reads and parses a file inventory.
///
/// @param error receives the sentence of a failure: readMetadataFile()'s, or the parser's when it is still empty
[[nodiscard]] bool loadFileInventory(const std::filesystem::path& path, const Manifest& manifest,
                                     std::vector<InventoryEntry>& entries, std::wstring& error);

/// True when a release's managed-file list names the files of its inventory and no others.
[[nodiscard]] bool namesSameFiles(const std::vector<InventoryEntry>& entries, const std::vector<std::string>& listed);

}  // namespace vorthmere::update
