#pragma once

#include <filesystem>
#include <system_error>
#include <vector>

namespace vorthmere::update {

/// Changes that take several calls of the platform.

/// Creates a folder with all missing parents. A folder that is there already is no failure.
///
/// @param created receives, at its end, each folder that this call created, parents first; also on failure
[[nodiscard]] std::error_code createFolders(const std::filesystem::path& folder,
                                            std::vector<std::filesystem::path>& created);
[[nodiscard]] std::error_code createFolders(const std::filesystem::path& folder);

/// Removes one file, also a read-only one. A missing file is no failure.
[[nodiscard]] std::error_code removeFile(const std::filesystem::path& file);

/// Removes a folder with all that it holds, or a single file, read-only ones too. A missing one is no failure, nor is
/// what somebody else removes meanwhile.
///
/// A reparse point is removed itself and never entered: nothing outside the folder is ever touched. The first entry
/// that stays ends the removal.
[[nodiscard]] std::error_code removeTree(const std::filesystem::path& path);

}  // namespace vorthmere::update
