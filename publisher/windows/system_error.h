#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// The reason of the calling thread's last failed Windows call, without a full stop.
[[nodiscard]] std::string lastReason();

/// Leaves "NAME cannot be WHAT: REASON." in `error`.
///
/// @return false
bool failWithReason(const std::filesystem::path& path, std::string_view what, std::string& error);

}  // namespace vorthmere::publish
