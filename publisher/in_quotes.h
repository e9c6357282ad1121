#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// Puts a name into quotes. Control characters could change what a terminal shows and become "\x1B" and the like.
[[nodiscard]] std::string inQuotes(std::string_view name);
[[nodiscard]] std::string inQuotes(const std::string& name);
[[nodiscard]] std::string inQuotes(const char* name);
[[nodiscard]] std::string inQuotes(const std::filesystem::path& path);

}  // namespace vorthmere::publish
