#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::publish {

/// Says which rule of update::isSafeRelativePath() a path breaks, for a person who has to rename a file.
///
/// @return a clause without a full stop, or nothing when the path is accepted
[[nodiscard]] std::string brokenPathRule(std::string_view path);

/// Finds the paths of a release that Windows cannot keep apart: files or folders that differ only in letter case, and
/// files that are also folders.
///
/// @return one sentence about each such pair
[[nodiscard]] std::vector<std::string> clashesOnWindows(const std::vector<std::string>& paths);

}  // namespace vorthmere::publish
