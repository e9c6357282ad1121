#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vorthmere::update {

/// Moves the managed files of the installation aside and the new ones in. After a failure, moves everything back as far
/// as the system lets it.
///
/// @param installationFolder absolute, canonical folder of the installation
/// @param sourceFolder       holds each path to install at the same relative place
/// @param backupFolder       receives each file moved aside at the same relative place
/// @param pathsToVacate      managed relative paths of the files that the installation holds now
/// @param pathsToInstall     managed relative paths of the new files, moved in in this order
/// @param error              receives the first failure's sentence; untouched on success
/// @return true when every path was installed; the backup then holds every file that either list names and that
///         existed. False after the rollback: the files moved in are gone, and so are the folders that were made for
///         them and are empty; the files moved aside are back. Each step of the rollback is tried once, whatever
///         became of the others, and its own failures are not reported: a file that cannot return stays in the backup.
///         The sentences: "The installation contains a reparse point in a managed path.", "A managed installation path
///         is not a regular file.", "Unable to prepare the update backup.", "Unable to back up the current
///         installation.", "Unable to prepare an updated installation folder.", "Unable to install an updated game
///         file."
/// @throws std::filesystem::filesystem_error "exists" or "status", when a path's status cannot be told; nothing is
///         rolled back then
///
/// Files are renamed, never copied. Nothing is locked and nothing is retried: the game must have exited.
[[nodiscard]] bool installWithBackup(const std::filesystem::path& installationFolder,
                                     const std::filesystem::path& sourceFolder,
                                     const std::filesystem::path& backupFolder,
                                     const std::vector<std::string>& pathsToVacate,
                                     const std::vector<std::string>& pathsToInstall, std::wstring& error);

}  // namespace vorthmere::update
