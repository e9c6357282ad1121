#pragma once

#include <windows.h>
// windows.h has to come first.
#include <bcrypt.h>

#include <filesystem>
#include <vector>

#include "tests/support/windows_handle.h"

namespace vorthmere::bench {

struct AlgorithmTraits {
    using Type = BCRYPT_ALG_HANDLE;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type handle) noexcept {
        BCryptCloseAlgorithmProvider(handle, 0);
    }
};

struct HashTraits {
    using Type = BCRYPT_HASH_HANDLE;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type handle) noexcept {
        BCryptDestroyHash(handle);
    }
};

/// Digests files in the fewest calls: one provider and one block of 64 KiB for all files.
class Digester {
public:
    Digester();

    /// Computes the SHA-256 digest of a file and discards it. Throws on failure.
    void digest(const std::filesystem::path& path);

private:
    update::UniqueHandle<AlgorithmTraits> provider_;
    std::vector<UCHAR> block_;
};

}  // namespace vorthmere::bench
