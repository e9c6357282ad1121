#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// A name as it stands in a sentence. Control characters, with which a name could change what a terminal shows, are
/// written as "\x1B".
[[nodiscard]] std::string inQuotes(std::string_view name);
[[nodiscard]] std::string inQuotes(const std::string& name);
[[nodiscard]] std::string inQuotes(const char* name);
[[nodiscard]] std::string inQuotes(const std::filesystem::path& path);

}  // namespace vorthmere::publish
