#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// The keys of the "key=value" lines in a manifest, in an inventory's header and in the release marker.
namespace key {

inline constexpr std::string_view archive = "archive";
inline constexpr std::string_view mandatory = "mandatory";
inline constexpr std::string_view notes = "notes";
inline constexpr std::string_view protocol = "protocol";
inline constexpr std::string_view release = "release";
inline constexpr std::string_view sha256 = "sha256";
inline constexpr std::string_view size = "size";
inline constexpr std::string_view url = "url";
inline constexpr std::string_view version = "version";

}  // namespace key

/// Writes one "key=value" line, without its end.
[[nodiscard]] std::string fieldLine(std::string_view key, std::string_view value);

/// Reads a "key=value" line.
///
/// @param value receives what follows the "="; untouched on failure
/// @return false when the line has another key
[[nodiscard]] constexpr bool readFieldLine(std::string_view line, std::string_view key, std::string_view& value) {
    if (!line.starts_with(key) || !line.substr(key.size()).starts_with('=')) return false;
    value = line.substr(key.size() + 1);
    return true;
}

}  // namespace vorthmere::update
