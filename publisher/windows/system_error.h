#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// What the calling thread's last failed call of Windows says, without a full stop.
[[nodiscard]] std::string lastReason();

/// Leaves "NAME cannot be WHAT: REASON." in `error`.
///
/// @return false
bool failWithReason(const std::filesystem::path& path, std::string_view what, std::string& error);

}  // namespace vorthmere::publish
