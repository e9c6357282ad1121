#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vorthmere::update::testing {

/// Computes one SHA-256 digest, without the system's or a library's help. May be copied byte by byte.
class Sha256 {
public:
    using Value = std::array<std::uint8_t, 32>;

    void add(const std::uint8_t* data, std::size_t count);
    /// Nothing may be added afterwards.
    [[nodiscard]] Value finish();

private:
    static constexpr std::size_t kBlockBytes = 64;

    void take(const std::uint8_t* data);

    std::array<std::uint32_t, 8> words_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                           0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<std::uint8_t, kBlockBytes> block_{};
    std::uint64_t bytes_ = 0;
};

/// SHA-256 of a text, as 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256TextOf(std::string_view bytes);

}  // namespace vorthmere::update::testing
