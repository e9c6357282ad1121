#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/handle.h"

namespace vorthmere::update {

void closeDigestProvider(void* handle) noexcept;
void closeDigest(void* handle) noexcept;

/// The system's SHA-256 (CNG).
using DigestProvider = UniqueHandle<OpaqueHandleTraits<closeDigestProvider>>;

/// One digest in the making.
using Digest = UniqueHandle<OpaqueHandleTraits<closeDigest>>;

using DigestBytes = std::array<std::uint8_t, 32>;

/// Empty when the system has no SHA-256 (BCryptOpenAlgorithmProvider).
[[nodiscard]] DigestProvider openSha256();

/// Asks how many bytes of memory a digest needs (BCryptGetProperty).
///
/// @return false when that cannot be told
[[nodiscard]] bool digestMemorySize(const DigestProvider& provider, std::uint32_t& bytes);

/// Begins a digest (BCryptCreateHash).
///
/// @param memory as large as digestMemorySize() said; the digest uses it until it is closed
/// @return empty on failure
[[nodiscard]] Digest beginDigest(const DigestProvider& provider, std::uint8_t* memory, std::uint32_t memoryBytes);

/// Takes the next bytes into the digest (BCryptHashData).
[[nodiscard]] bool digestBytes(const Digest& digest, const std::uint8_t* bytes, std::uint32_t count);

/// Ends the digest and gives its value (BCryptFinishHash).
[[nodiscard]] bool finishDigest(const Digest& digest, DigestBytes& value);

}  // namespace vorthmere::update
