#include "publisher/sha256.h"

#include <windows.h>

#include <bcrypt.h>

#include <array>
#include <cstdint>
#include <stdexcept>

#include "update/sha256_text.h"

namespace vorthmere::publish {
namespace {

void require(bool succeeded) {
    if (!succeeded) throw std::runtime_error("The SHA-256 digest cannot be computed.");
}

/// Opened once for all threads.
BCRYPT_ALG_HANDLE algorithm() {
    static const BCRYPT_ALG_HANDLE opened = [] {
        BCRYPT_ALG_HANDLE handle = nullptr;
        require(BCryptOpenAlgorithmProvider(&handle, BCRYPT_SHA256_ALGORITHM, nullptr, 0) == 0);
        return handle;
    }();
    return opened;
}

}  // namespace

void Sha256::Release::operator()(void* context) const {
    BCryptDestroyHash(context);
}

Sha256::Sha256() {
    BCRYPT_HASH_HANDLE hash = nullptr;
    require(BCryptCreateHash(algorithm(), &hash, nullptr, 0, nullptr, 0, 0) == 0);
    context_.reset(hash);
}

void Sha256::add(std::span<const char> bytes) {
    // The call takes a pointer to mutable bytes but does not write to them.
    auto* const data = const_cast<UCHAR*>(reinterpret_cast<const UCHAR*>(bytes.data()));
    require(BCryptHashData(context_.get(), data, static_cast<ULONG>(bytes.size()), 0) == 0);
}

std::string Sha256::finish() {
    std::array<std::uint8_t, update::kSha256Bytes> digest{};
    require(BCryptFinishHash(context_.get(), digest.data(), static_cast<ULONG>(digest.size()), 0) == 0);
    return update::sha256Text(digest);
}

}  // namespace vorthmere::publish
