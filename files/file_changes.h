#pragma once

#include <filesystem>
#include <system_error>
#include <vector>

namespace vorthmere::update {

/// Changes of files and folders that take several calls of the platform.

/// Creates a folder and all missing parents. An existing folder is no failure.
///
/// @param created each folder that this call creates is appended, parents first, also when the call fails
[[nodiscard]] std::error_code createFolders(const std::filesystem::path& folder,
                                            std::vector<std::filesystem::path>& created);
[[nodiscard]] std::error_code createFolders(const std::filesystem::path& folder);

/// Removes one file, even if it is read-only. A missing file is no failure.
[[nodiscard]] std::error_code removeFile(const std::filesystem::path& file);

/// Removes a folder with everything in it, or a single file, even if read-only. A missing one is no failure, nor is an
/// entry that somebody else removes meanwhile.
///
/// Reparse points are removed and never entered, so nothing outside the folder is touched. The removal stops at the
/// first entry that cannot be removed.
[[nodiscard]] std::error_code removeTree(const std::filesystem::path& path);

}  // namespace vorthmere::update
