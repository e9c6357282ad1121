#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publisher/release_content.h"

namespace vorthmere::publish {

/// What was found in a folder with the game's files.
struct GameFolder {
    std::vector<ReleaseFile> files;         ///< in byte order of the paths, without digests
    std::vector<std::string> emptyFolders;  ///< folders without any file below them: a release cannot hold them
};

/// Lists the game's files without reading any of them.
///
/// @param folder the folder, which is only read. `KVN_MANAGED_FILES.txt` and `kvn_release.txt` at its top level are
///               passed over: every release gets its own.
/// @param error  receives one sentence naming the file and the rule when the folder holds a link or a special file, or
///               a name that the updater does not accept
[[nodiscard]] bool listGameFolder(const std::filesystem::path& folder, GameFolder& found, std::string& error);

/// Judges all files of a release together, the generated ones included, by what the updater accepts.
///
/// @param files with sizes, in byte order of the paths
/// @param error receives one sentence naming the file and the rule: two paths that are one on Windows, a file that is
///              also a folder, too many files, too many bytes, a missing required file, a list that is too long
[[nodiscard]] bool judgeReleaseFiles(const std::vector<ReleaseFile>& files, std::string& error);

}  // namespace vorthmere::publish
