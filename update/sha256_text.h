#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vorthmere::update {

/// Bytes of a SHA-256 digest.
inline constexpr std::size_t kSha256Bytes = 32;

/// Characters of a SHA-256 digest written in hexadecimal.
inline constexpr std::size_t kSha256TextLength = 2 * kSha256Bytes;

/// True for exactly 64 hexadecimal digits of either case.
[[nodiscard]] constexpr bool isSha256Text(std::string_view text) {
    return text.size() == kSha256TextLength &&
           text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

/// Writes a digest as 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256Text(std::span<const std::uint8_t, kSha256Bytes> digest);

}  // namespace vorthmere::update
