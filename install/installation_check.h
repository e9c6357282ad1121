#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::update {

/// Decides whether a folder is a portable installation that the updater may work on.
///
/// @param installationFolder replaced by its absolute, canonical form, whether the check succeeds or fails
/// @param error              receives "This is not a writable Kelvane portable installation." when any test fails
/// @return true when the folder exists, is no reparse point, and holds the game, the updater and the managed-file list
///         as regular files. Writability is not tested here.
/// @throws std::filesystem::filesystem_error "absolute" or "status", when the platform cannot tell
[[nodiscard]] bool checkInstallation(std::filesystem::path& installationFolder, std::wstring& error);

}  // namespace vorthmere::update
