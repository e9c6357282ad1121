#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// Turns each byte into a wide character of the same value. For the ASCII texts of the metadata files.
[[nodiscard]] std::wstring widen(std::string_view text);

/// Turns each ASCII character into a byte, and every other character into "?", which no safe path contains.
[[nodiscard]] std::string narrow(std::wstring_view text);

}  // namespace vorthmere::update
