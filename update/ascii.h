#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vorthmere::update {

/// Character classes and case conversion for ASCII, whatever the locale. Bytes from 128 on are in no class and stay as
/// they are.

constexpr bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isPrintableAscii(char c) {
    return c >= ' ' && c <= '~';
}

constexpr char toAsciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char toAsciiUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline std::string toAsciiLower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = toAsciiLower(c);
    return lower;
}

inline std::string toAsciiUpper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        c = toAsciiUpper(c);
    return upper;
}

}  // namespace vorthmere::update
