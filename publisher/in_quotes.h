#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// A name as it stands in a sentence.
[[nodiscard]] inline std::string inQuotes(std::string_view name) {
    std::string text(1, '"');
    text.append(name).push_back('"');
    return text;
}

[[nodiscard]] inline std::string inQuotes(const std::string& name) {
    return inQuotes(std::string_view(name));
}

[[nodiscard]] inline std::string inQuotes(const std::filesystem::path& path) {
    return inQuotes(std::string_view(path.string()));
}

}  // namespace vorthmere::publish
