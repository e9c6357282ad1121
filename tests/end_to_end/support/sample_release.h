#pragma once

#include <cstddef>
#include <string>

#include "tests/end_to_end/support/release_files.h"

namespace vorthmere::end_to_end {

/// The releases of a small sample game, with their release marker and managed-file list. From 41 to 42 some files
/// change, some go, some come and most stay; there are nested folders, names with blanks, empty files and read-only
/// files among each of them. The game is a real program that reports its start, and the updater is the real one.
[[nodiscard]] const ReleaseFiles& sampleRelease41();
[[nodiscard]] const ReleaseFiles& sampleRelease42();

/// Bytes that do not compress, the same in every run.
[[nodiscard]] std::string noise(std::size_t count, unsigned seed);

/// What a player has in and around the game's folders: no release lists any of it.
[[nodiscard]] const ReleaseFiles& playersFiles();

}  // namespace vorthmere::end_to_end
