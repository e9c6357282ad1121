#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// Makes each byte one wide character of the same value: for the ASCII texts of the metadata files.
[[nodiscard]] inline std::wstring widen(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (const char c : text)
        wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(c)));
    return wide;
}

/// Converts to UTF-8; never fails, as what cannot be converted becomes the replacement character, which no managed path
/// may hold.
[[nodiscard]] std::string toUtf8(std::wstring_view text);

}  // namespace vorthmere::update
