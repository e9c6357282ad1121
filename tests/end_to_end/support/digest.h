#pragma once

#include <string>
#include <string_view>

namespace vorthmere::end_to_end {

/// SHA-256 as 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256(std::string_view bytes);

}  // namespace vorthmere::end_to_end
