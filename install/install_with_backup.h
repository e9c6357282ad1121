#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vorthmere::update {

/// Moves the installed files to the backup and the new files in. After a failure, moves everything back if it can.
///
/// The three folders are on one volume, so files are renamed, not copied. Nothing is locked and nothing is retried: the
/// game must have exited.
///
/// @param installationFolder absolute, canonical folder of the installation
/// @param sourceFolder       holds the new files, each at its relative path
/// @param backupFolder       receives the old files, each at its relative path
/// @param pathsToVacate      relative paths of the files that the installed release lists; they may be missing
/// @param pathsToInstall     relative paths of the new files, which move in in this order; a file that is in the place
///                           of one moves to the backup, too
/// @param error              receives the sentence of the first failure; untouched on success
/// @return true when every new file moved in. False after the rollback, with "The installation contains a reparse point
///         in a managed path.", "A managed installation path is not a regular file.", "Unable to prepare the update
///         backup.", "Unable to back up the current installation.", "Unable to prepare an updated installation folder."
///         or "Unable to install an updated game file."
/// @throws std::filesystem::filesystem_error "exists" or "status", when a path's status is unknown; nothing is rolled
///         back then, and the files that had moved stay in the backup
///
/// The rollback deletes the new files that had moved in, removes the folders created for them that are empty, and moves
/// the old files back. It tries each step once, whatever became of the others, and reports no failure of its own: an
/// old file that cannot return stays in the backup.
[[nodiscard]] bool installWithBackup(const std::filesystem::path& installationFolder,
                                     const std::filesystem::path& sourceFolder,
                                     const std::filesystem::path& backupFolder,
                                     const std::vector<std::string>& pathsToVacate,
                                     const std::vector<std::string>& pathsToInstall, std::wstring& error);

}  // namespace vorthmere::update
