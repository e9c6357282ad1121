#pragma once

#include <filesystem>
#include <system_error>

namespace vorthmere::publish {

/// An absolute path with every link on it resolved, as far as it exists.
[[nodiscard]] std::filesystem::path resolvedPath(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::publish
