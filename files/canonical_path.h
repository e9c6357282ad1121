#pragma once

#include <filesystem>
#include <system_error>

namespace vorthmere::update {

/// Makes a path absolute by the platform's rule: relative to the current directory, "." and ".." folded. An empty path
/// stays empty.
///
/// @throws std::filesystem::filesystem_error "absolute", when the platform cannot tell
[[nodiscard]] std::filesystem::path absolutePath(const std::filesystem::path& path);

/// The longest existing leading part of an absolute path, with every link and junction in it resolved, followed by the
/// rest, "." and ".." folded.
///
/// @param failure cleared, or set when an existing part cannot be resolved; then the result is empty
[[nodiscard]] std::filesystem::path weaklyCanonicalPath(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::update
