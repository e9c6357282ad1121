#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publisher/release_content.h"

namespace vorthmere::publish {

/// A file at the top of a game folder with patterns for what is no part of the game. Never published itself.
inline constexpr std::string_view kIgnoreFileName = ".kvnignore";

/// The content of a game folder.
struct GameFolder {
    std::vector<ReleaseFile> files;         ///< in byte order of the paths, without digests
    std::vector<std::string> emptyFolders;  ///< folders without any file below them; a release cannot hold them
    std::uint64_t excluded = 0;             ///< files and folders that a pattern leaves out
};

/// Patterns, with the syntax of IgnoreRules, in addition to those of kIgnoreFileName.
struct GameFolderPatterns {
    std::vector<std::string> exclude;  ///< what is left out
    std::vector<std::string> include;  ///< what is let in although its name says that it is no part of a game
};

/// Lists the game's files without reading any of them.
///
/// @param folder only read. `KVN_MANAGED_FILES.txt` and `kvn_release.txt` at its top are left out: every release gets
///               its own.
/// @param error  receives one sentence for each link, each special file, each name that the updater does not accept,
///               and each name that is no part of a game, one a line
[[nodiscard]] bool listGameFolder(const std::filesystem::path& folder, const GameFolderPatterns& patterns,
                                  GameFolder& found, std::string& error);

}  // namespace vorthmere::publish
