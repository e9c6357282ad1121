#include "transfer/file_digest.h"

#include <windows.h>
// windows.h has to come first.
#include <bcrypt.h>

#include <array>
#include <cstddef>
#include <fstream>
#include <system_error>
#include <vector>

#include "platform/file_status.h"
#include "platform/unique_handle.h"
#include "update/sha256_text.h"

namespace vorthmere::update {
namespace {

constexpr std::size_t kReadBlockBytes = 65536;

using DigestBytes = std::array<UCHAR, 32>;

struct AlgorithmHandleTraits {
    using Type = BCRYPT_ALG_HANDLE;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type handle) noexcept {
        BCryptCloseAlgorithmProvider(handle, 0);
    }
};

struct HashHandleTraits {
    using Type = BCRYPT_HASH_HANDLE;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type handle) noexcept {
        BCryptDestroyHash(handle);
    }
};

using AlgorithmHandle = UniqueHandle<AlgorithmHandleTraits>;
using HashHandle = UniqueHandle<HashHandleTraits>;

bool openProvider(AlgorithmHandle& provider, ULONG& objectLength) {
    ULONG written = 0;
    return BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(provider.receive(), BCRYPT_SHA256_ALGORITHM, nullptr, 0)) &&
           BCRYPT_SUCCESS(BCryptGetProperty(provider.get(), BCRYPT_OBJECT_LENGTH,
                                            reinterpret_cast<PUCHAR>(&objectLength), sizeof(objectLength), &written,
                                            0));
}

std::string toHexadecimal(const DigestBytes& bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(kSha256TextLength);
    for (const UCHAR byte : bytes) {
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 15]);
    }
    return text;
}

}  // namespace

bool sha256File(const std::filesystem::path& path, std::string& digest, std::wstring& error) {
    digest.clear();
    const auto fail = [&error](std::wstring_view sentence) {
        error = sentence;
        return false;
    };

    AlgorithmHandle provider;
    ULONG objectLength = 0;
    if (!openProvider(provider, objectLength)) return fail(L"Windows could not initialize SHA-256 verification.");

    std::vector<UCHAR> hashObject(objectLength);
    HashHandle hash;
    if (!BCRYPT_SUCCESS(
            BCryptCreateHash(provider.get(), hash.receive(), hashObject.data(), objectLength, nullptr, 0, 0)))
        return fail(L"Windows could not create the SHA-256 verifier.");

    std::ifstream file(path, std::ios::binary);
    if (!file) return fail(L"Unable to read the downloaded update archive.");

    std::vector<UCHAR> block(kReadBlockBytes);
    while (file) {
        file.read(reinterpret_cast<char*>(block.data()), static_cast<std::streamsize>(block.size()));
        const auto count = static_cast<ULONG>(file.gcount());
        if (count > 0 && !BCRYPT_SUCCESS(BCryptHashData(hash.get(), block.data(), count, 0)))
            return fail(L"Windows could not hash the update archive.");
    }

    // Only the end of the file may have ended the reading: a digest of a part of it proves nothing.
    DigestBytes bytes{};
    if (!file.eof() || !BCRYPT_SUCCESS(BCryptFinishHash(hash.get(), bytes.data(), static_cast<ULONG>(bytes.size()), 0)))
        return fail(L"Windows could not finish SHA-256 verification.");
    digest = toHexadecimal(bytes);
    return true;
}

bool installedFileMatches(const std::filesystem::path& path, const InventoryEntry& entry) {
    std::error_code failure;
    if (fileType(path, failure) != FileType::regular) return false;
    if (fileSize(path, failure) != entry.size || failure) return false;
    std::string digest;
    std::wstring ignored;
    return sha256File(path, digest, ignored) && digest == entry.sha256;
}

}  // namespace vorthmere::update
