#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::update {

/// Decides whether a folder is a portable installation that the updater may work on.
///
/// @param installationFolder replaced by its absolute, canonical form, also when the check fails; empty when it cannot
///                           be resolved
/// @param error              receives the sentence of a failure
/// @return true when the folder exists, is no reparse point, and holds the game, the updater and the managed-file list
///         as regular files. Does not test whether it is writable. False with "This is not a writable Kelvane portable
///         installation."
/// @throws std::filesystem::filesystem_error "absolute" or "status", when the platform cannot make the path absolute or
///         tell a file's type
[[nodiscard]] bool checkInstallation(std::filesystem::path& installationFolder, std::wstring& error);

}  // namespace vorthmere::update
