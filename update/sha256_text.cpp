#include "update/sha256_text.h"

namespace vorthmere::update {

std::string sha256Text(std::span<const std::uint8_t, kSha256Bytes> digest) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text(kSha256TextLength, '0');
    for (std::size_t i = 0; i < digest.size(); ++i) {
        text[2 * i] = digits[digest[i] >> 4];
        text[2 * i + 1] = digits[digest[i] & 15];
    }
    return text;
}

}  // namespace vorthmere::update
