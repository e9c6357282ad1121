#pragma once

#include <cstddef>
#include <string_view>

namespace vorthmere::update {

/// Characters of a SHA-256 digest in hexadecimal.
inline constexpr std::size_t kSha256TextLength = 64;

/// True for exactly 64 hexadecimal digits of either case.
[[nodiscard]] constexpr bool isSha256Text(std::string_view text) {
    return text.size() == kSha256TextLength &&
           text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

}  // namespace vorthmere::update
