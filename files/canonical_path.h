#pragma once

#include <filesystem>
#include <system_error>

namespace vorthmere::update {

/// Makes a path absolute as fullPath() does: relative to the current folder, with "." and ".." folded. An empty path
/// stays empty.
///
/// @throws std::filesystem::filesystem_error "absolute", when the platform fails
[[nodiscard]] std::filesystem::path absolutePath(const std::filesystem::path& path);

/// Resolves a path of which a part need not exist: every link and junction in the longest existing leading part is
/// resolved, the rest follows as it is, and "." and ".." are folded. An empty path stays empty.
///
/// @param failure cleared, or set when an existing part cannot be resolved or the path cannot be made absolute
/// @return an absolute path; empty after a failure
[[nodiscard]] std::filesystem::path weaklyCanonicalPath(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::update
