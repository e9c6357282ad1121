#pragma once

#include <filesystem>
#include <functional>
#include <system_error>

namespace vorthmere::update {

/// Visits every entry below a folder, each folder before the entries in it. Visits reparse points but does not enter
/// them.
///
/// @param visit   called with each entry's path; returns false to stop the walk
/// @param failure cleared, or set when a folder cannot be read
/// @return true when every entry was visited; false when the walk was stopped or failed
bool walkTree(const std::filesystem::path& folder, const std::function<bool(const std::filesystem::path&)>& visit,
              std::error_code& failure);

}  // namespace vorthmere::update
