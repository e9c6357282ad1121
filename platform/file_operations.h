#pragma once

#include <filesystem>
#include <system_error>

namespace vorthmere::update {

/// The calls that change files, straight to the platform and the same with every C++ library. All report through
/// `failure`, which is cleared on success, and none throws.

/// Creates a folder with all missing parents.
///
/// @return true when the folder was created, false when it was there already (no failure) or could not be created
bool createFolders(const std::filesystem::path& folder, std::error_code& failure);

enum class Overwrite { no, yes };

/// Copies one file, its attributes included.
void copyFile(const std::filesystem::path& from, const std::filesystem::path& to, Overwrite overwrite,
              std::error_code& failure);

/// Moves one file. An existing target file is replaced; a move to another volume is a copy and a removal.
void renameFile(const std::filesystem::path& from, const std::filesystem::path& to, std::error_code& failure);

/// Removes one file, also one with the read-only attribute. A missing file is no failure.
void removeFile(const std::filesystem::path& file, std::error_code& failure);

/// Removes a folder with all that it holds, or a single file, read-only ones too. A missing one is no failure.
///
/// A reparse point is removed itself and never entered: nothing outside the folder is ever touched.
void removeTree(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::update
