#pragma once

#include <string>
#include <string_view>

namespace vorthmere::end_to_end {

/// SHA-256 of a text, as 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256TextOf(std::string_view bytes);

}  // namespace vorthmere::end_to_end
