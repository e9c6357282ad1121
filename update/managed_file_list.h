#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::update {

/// Largest managed-file list, in bytes.
inline constexpr std::size_t kMaxManagedFileListBytes = 131072;

/// Most files that a release may hold.
inline constexpr std::size_t kMaxManagedFiles = 1024;

/// Parses the list of the files that belong to a release: one managed relative path a line, blank lines skipped.
///
/// @param text  the file's bytes
/// @param paths emptied on entry; on success 1 to 1024 distinct safe paths in the order of the lines, among them
///              `KVN_MANAGED_FILES.txt`, `Vorthmere.exe` and `KVNUpdater.exe`; not to be used after a failure
/// @param error cleared on entry; on failure the sentence that names the first fault found
/// @return true when the list is valid. Paths are compared exactly, letter case included.
[[nodiscard]] bool parseManagedFileList(std::string_view text, std::vector<std::string>& paths, std::string& error);

}  // namespace vorthmere::update
