#include "publisher/sha256.h"

namespace vorthmere::publish {

std::string hexadecimal(std::span<const unsigned char> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string sha256Of(std::string_view text) {
    Sha256 digest;
    digest.add({text.data(), text.size()});
    return digest.finish();
}

}  // namespace vorthmere::publish
