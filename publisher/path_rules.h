#pragma once

#include <string>
#include <string_view>

namespace vorthmere::publish {

/// Says in words which rule of update::isSafeRelativePath() a path breaks, for a person who has to rename a file.
///
/// @return a clause without a full stop, or nothing when the path is accepted
[[nodiscard]] std::string brokenPathRule(std::string_view path);

}  // namespace vorthmere::publish
