#include "update/text.h"

namespace vorthmere::update {

std::wstring widen(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (const char c : text)
        wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(c)));
    return wide;
}

std::string narrow(std::wstring_view text) {
    constexpr wchar_t lastAscii = 127;
    std::string bytes;
    bytes.reserve(text.size());
    for (const wchar_t c : text)
        bytes.push_back(c <= lastAscii ? static_cast<char>(c) : '?');
    return bytes;
}

}  // namespace vorthmere::update
