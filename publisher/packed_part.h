#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vorthmere::publish {

/// A part of a package's entry, packed.
struct PackedPart {
    std::vector<char> bytes;
    std::uint32_t crc = 0;          ///< CRC-32 of the content, before it was packed
    std::uint64_t contentSize = 0;  ///< its bytes
};

/// Bytes before a part that deflate looks back to.
inline constexpr std::size_t kDeflateWindowBytes = 32768;

/// Stores a part as it is.
[[nodiscard]] PackedPart storePart(std::span<const char> content);

/// Deflates a part of a content. The parts in order make one stream. The result depends on nothing but the parameters
/// and the version of zlib.
///
/// @param before the bytes before the part, up to kDeflateWindowBytes
/// @param isLast ends the stream
/// @throws std::runtime_error when there is no memory left
[[nodiscard]] PackedPart deflatePart(std::span<const char> before, std::span<const char> content, bool isLast);

/// The CRC-32 of bytes that follow others with the CRC-32 `crc`, which is 0 for none.
[[nodiscard]] std::uint32_t crcOf(std::uint32_t crc, std::span<const char> bytes);

/// The CRC-32 of two parts after each other.
[[nodiscard]] std::uint32_t joinCrc(std::uint32_t first, const PackedPart& second);

}  // namespace vorthmere::publish
