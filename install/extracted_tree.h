#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace vorthmere::update {

/// Relative paths with "/" between components, in byte order.
using ExtractedFiles = std::set<std::string, std::less<>>;

/// Lists the files of the staged release and checks that their paths are safe.
///
/// @param stagingFolder  holds the release, unpacked from the package or put together file by file
/// @param extractedFiles emptied first; on success the regular files found, not to be used after a failure
/// @param error          receives the sentence of a failure; untouched on success
/// @return true when nothing unsafe was found. False with "The extracted update contains an unsafe path.", "The update
///         archive contains an unsupported file type." or "Unable to inspect the extracted update."
///
/// A reparse point ends the walk early, but successfully: the files after it are missing from the set. The comparison
/// with the managed-file list finds that.
[[nodiscard]] bool inspectExtractedTree(const std::filesystem::path& stagingFolder, ExtractedFiles& extractedFiles,
                                        std::wstring& error);

}  // namespace vorthmere::update
