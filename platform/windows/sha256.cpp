#include "platform/sha256.h"

#include <windows.h>
// windows.h has to come first.
#include <bcrypt.h>

#include "platform/windows/windows_result.h"

namespace vorthmere::update {

void closeDigestProvider(void* handle) noexcept {
    closeQuietly(handle, [](void* provider) { BCryptCloseAlgorithmProvider(provider, 0); });
}

void closeDigest(void* handle) noexcept {
    closeQuietly(handle, BCryptDestroyHash);
}

DigestProvider openSha256() {
    DigestProvider provider;
    if (!BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(provider.receive(), BCRYPT_SHA256_ALGORITHM, nullptr, 0)))
        return {};
    return provider;
}

bool digestMemorySize(const DigestProvider& provider, std::uint32_t& bytes) {
    ULONG size = 0;
    ULONG written = 0;
    if (!BCRYPT_SUCCESS(BCryptGetProperty(provider.get(), BCRYPT_OBJECT_LENGTH, reinterpret_cast<PUCHAR>(&size),
                                          sizeof(size), &written, 0)))
        return false;
    bytes = size;
    return true;
}

Digest beginDigest(const DigestProvider& provider, std::uint8_t* memory, std::uint32_t memoryBytes) {
    Digest digest;
    if (!BCRYPT_SUCCESS(BCryptCreateHash(provider.get(), digest.receive(), memory, memoryBytes, nullptr, 0, 0)))
        return {};
    return digest;
}

bool digestBytes(const Digest& digest, const std::uint8_t* bytes, std::uint32_t count) {
    // The function only reads the bytes, though its parameter is not const.
    return BCRYPT_SUCCESS(BCryptHashData(digest.get(), const_cast<PUCHAR>(bytes), count, 0));
}

bool finishDigest(const Digest& digest, DigestBytes& value) {
    return BCRYPT_SUCCESS(BCryptFinishHash(digest.get(), value.data(), static_cast<ULONG>(value.size()), 0));
}

}  // namespace vorthmere::update
