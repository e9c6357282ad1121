#pragma once

#include <filesystem>
#include <system_error>
#include <vector>

namespace vorthmere::publish {

/// The names of a folder's entries, in no order.
///
/// @param failure cleared, or set when the listing fails or breaks off
[[nodiscard]] std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& failure);

}  // namespace vorthmere::publish
