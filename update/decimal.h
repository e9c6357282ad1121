#pragma once

#include <limits>
#include <string_view>
#include <type_traits>

namespace vorthmere::update {

/// Reads a whole text as an unsigned decimal number.
///
/// @param text   one or more digits "0" to "9" and nothing else; leading zeros are allowed
/// @param number receives the value; untouched on failure
/// @return false for an empty text, any other character, or a value beyond the type's range
template <typename Character, typename Unsigned>
[[nodiscard]] constexpr bool parseDecimal(std::basic_string_view<Character> text, Unsigned& number) {
    static_assert(std::is_unsigned_v<Unsigned>);
    constexpr Unsigned limit = std::numeric_limits<Unsigned>::max();
    if (text.empty()) return false;
    Unsigned value = 0;
    for (const Character c : text) {
        if (c < Character('0') || c > Character('9')) return false;
        const auto digit = static_cast<Unsigned>(c - Character('0'));
        if (value > (limit - digit) / 10) return false;
        value = static_cast<Unsigned>(value * 10 + digit);
    }
    number = value;
    return true;
}

}  // namespace vorthmere::update
