#pragma once

#include <filesystem>
#include <string_view>

namespace vorthmere::update {

/// True when the entry at `path` exists and carries the reparse-point attribute (a junction, a symbolic link, a mount
/// point). What cannot be queried does not count: only a positively seen reparse point does.
[[nodiscard]] bool isReparsePoint(const std::filesystem::path& path);

/// Tests every component of a relative path for the reparse-point attribute, from the first to the last.
///
/// @param rootFolder   where the path starts; the folder itself is not tested
/// @param relativePath managed relative path, "/" separated; an empty one passes
/// @return false when an existing component is a reparse point; components that do not exist are passed over
[[nodiscard]] bool isFreeOfReparsePoints(const std::filesystem::path& rootFolder, std::string_view relativePath);

}  // namespace vorthmere::update
