#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// Makes each byte one wide character of the same value: for the ASCII texts of the metadata files.
[[nodiscard]] std::wstring widen(std::string_view text);

/// Makes each ASCII character one byte. Any other character becomes "?", which no managed path may hold.
[[nodiscard]] std::string narrow(std::wstring_view text);

}  // namespace vorthmere::update
