#pragma once

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>

namespace vorthmere::update {

/// Most entries, files and folders together, that a package's listing may name.
inline constexpr std::size_t kMaxArchiveEntries = 2048;

/// Relative paths with "/" between components, in byte order.
using ExtractedFiles = std::set<std::string, std::less<>>;

/// Checks a package before anything of it is unpacked.
///
/// @param listing what the archive tool printed: one entry a line, folders with a trailing "/"
/// @param error   receives "The update archive is empty." or "The update archive contains an unsafe path."; more than
///                kMaxArchiveEntries entries count as unsafe
/// @return true when the listing names at least one entry and every entry is a safe relative path
[[nodiscard]] bool checkArchiveListing(std::string_view listing, std::wstring& error);

/// Walks the unpacked package and names every file in it.
///
/// @param stagingFolder  the folder that the package was unpacked into
/// @param extractedFiles emptied first; on success the regular files seen, not to be used after a failure
/// @param error          receives "The extracted update contains an unsafe path.", "The update archive contains an
///                       unsupported file type.", or "Unable to inspect the extracted update."
/// @return true when nothing unsafe was found. A reparse point ends the walk early and successfully: the files behind
/// it
///         are then missing from the set, which the comparison with the managed-file list finds.
[[nodiscard]] bool inspectExtractedTree(const std::filesystem::path& stagingFolder, ExtractedFiles& extractedFiles,
                                        std::wstring& error);

}  // namespace vorthmere::update
