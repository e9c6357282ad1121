#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::update {

/// Parses the list of a release's files: one relative path a line. Blank lines are skipped.
///
/// @param text  the file's bytes
/// @param paths emptied on entry; on success at most kMaxManagedFiles different safe paths in the order of the lines,
///              among them `KVN_MANAGED_FILES.txt`, `Vorthmere.exe` and `KVNUpdater.exe`; not to be used after a
///              failure
/// @param error cleared on entry; on failure the sentence of the first fault found
/// @return true when the list is valid. Paths are compared exactly, letter case included. False with "Managed-file list
///         size is invalid.", "Managed-file list contains an unsafe or duplicate path.", "Managed-file list is too
///         large." or "Managed-file list is missing a required runtime."
[[nodiscard]] bool parseManagedFileList(std::string_view text, std::vector<std::string>& paths, std::string& error);

/// Reads and parses a managed-file list.
///
/// @param paths as parseManagedFileList() fills it
/// @param error receives the sentence of a failure: readMetadataFile()'s, or the parser's when it is still empty
[[nodiscard]] bool loadManagedFileListFrom(const std::filesystem::path& file, std::vector<std::string>& paths,
                                           std::wstring& error);

/// The same with the list of the release in a folder: the installation, or the staging folder.
[[nodiscard]] bool loadManagedFileList(const std::filesystem::path& folder, std::vector<std::string>& paths,
                                       std::wstring& error);

}  // namespace vorthmere::update
