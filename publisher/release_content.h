#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "update/file_inventory.h"

namespace vorthmere::publish {

/// Bytes that are read, hashed or written at a time.
inline constexpr std::size_t kBlockBytes = std::size_t{1} << 20;

/// One file of the release that is being built.
struct ReleaseFile {
    update::InventoryEntry entry;  ///< path and size; hashReleaseFiles() fills in the digest
    std::filesystem::path source;  ///< the file in the game folder; empty for a generated one
    std::string text;              ///< the content of a generated file
    bool worthDeflating = true;    ///< set by hashReleaseFiles(); a package stores the file otherwise
    std::uint32_t crc = 0;         ///< CRC-32, set by hashReleaseFiles()
};

/// Takes the next bytes of a content; false stops the reading.
using ContentSink = std::function<bool(std::span<const char> bytes)>;

/// Receives the number of bytes that were processed since the last call. Several threads may call it at once.
using BytesDone = std::function<void(std::uint64_t count)>;

/// Reads a file from its beginning to its end in blocks of at most kBlockBytes.
///
/// @param error receives the sentence of a failure; untouched when the sink stopped the reading
/// @return false when the file cannot be read or the sink returned false
[[nodiscard]] bool readFile(const std::filesystem::path& path, const ContentSink& sink, std::string& error);

/// Like readFile() for a file of a release. Fails when the file no longer has the size that it was listed with.
[[nodiscard]] bool readContent(const ReleaseFile& file, const ContentSink& sink, std::string& error);

/// The entries of `files`, in their order.
[[nodiscard]] std::vector<update::InventoryEntry> inventoryOf(const std::vector<ReleaseFile>& files);

/// The sum of the sizes of `files`, in bytes.
[[nodiscard]] std::uint64_t totalBytes(const std::vector<ReleaseFile>& files);

}  // namespace vorthmere::publish
