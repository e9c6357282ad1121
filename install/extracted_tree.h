#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace vorthmere::update {

/// Relative paths with "/" between components, in byte order.
using ExtractedFiles = std::set<std::string, std::less<>>;

/// Walks the unpacked package and names every file in it.
///
/// @param stagingFolder  the folder that the package was unpacked into
/// @param extractedFiles emptied first; on success the regular files seen, not to be used after a failure
/// @param error          receives "The extracted update contains an unsafe path.", "The update archive contains an
///                       unsupported file type.", or "Unable to inspect the extracted update."
/// @return true when nothing unsafe was found. A reparse point ends the walk early and successfully: the files beyond
///         it are then missing from the set, which the comparison with the managed-file list finds.
[[nodiscard]] bool inspectExtractedTree(const std::filesystem::path& stagingFolder, ExtractedFiles& extractedFiles,
                                        std::wstring& error);

}  // namespace vorthmere::update
