#pragma once

#include <filesystem>
#include <string_view>

namespace vorthmere::update {

/// True when the entry at `path` exists and is a reparse point (a junction, a symbolic link, a mount point). False when
/// its attributes cannot be read.
[[nodiscard]] bool isReparsePoint(const std::filesystem::path& path);

/// Looks for a reparse point in a relative path, from its first component to its last.
///
/// @param rootFolder   where the path starts; the folder itself is not tested
/// @param relativePath managed relative path with "/" between components; may be empty
/// @return false when an existing component is a reparse point; true when none is, also when one is missing or cannot
///         be read
[[nodiscard]] bool isFreeOfReparsePoints(const std::filesystem::path& rootFolder, std::string_view relativePath);

}  // namespace vorthmere::update
