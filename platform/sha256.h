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

/// One digest being computed.
using Digest = UniqueHandle<OpaqueHandleTraits<closeDigest>>;

using DigestBytes = std::array<std::uint8_t, 32>;

/// Opens the system's SHA-256 (BCryptOpenAlgorithmProvider). Empty on failure.
[[nodiscard]] DigestProvider openSha256();

/// Asks how many bytes of memory a digest needs (BCryptGetProperty).
///
/// @return false on failure
[[nodiscard]] bool digestMemorySize(const DigestProvider& provider, std::uint32_t& bytes);

/// Begins a digest (BCryptCreateHash).
///
/// @param memory      as large as digestMemorySize() said; the caller's, and in use until the digest is closed
/// @param memoryBytes its size
/// @return empty on failure
[[nodiscard]] Digest beginDigest(const DigestProvider& provider, std::uint8_t* memory, std::uint32_t memoryBytes);

/// Adds the next bytes to the digest (BCryptHashData).
[[nodiscard]] bool digestBytes(const Digest& digest, const std::uint8_t* bytes, std::uint32_t count);

/// Finishes the digest and stores its value (BCryptFinishHash). It takes no more bytes afterwards.
[[nodiscard]] bool finishDigest(const Digest& digest, DigestBytes& value);

}  // namespace vorthmere::update
