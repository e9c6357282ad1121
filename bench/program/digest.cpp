#include "bench/program/digest.h"

#include <array>

#include "bench/program/require.h"

namespace vorthmere::bench {
namespace {

constexpr std::size_t kBlockBytes = 65536;

}  // namespace

Digester::Digester() : block_(kBlockBytes) {
    require(BCRYPT_SUCCESS(BCryptOpenAlgorithmProvider(provider_.receive(), BCRYPT_SHA256_ALGORITHM, nullptr, 0)),
            "opening the provider of SHA-256");
}

void Digester::digest(const std::filesystem::path& path) {
    update::UniqueHandle<HashTraits> hash;
    require(BCRYPT_SUCCESS(BCryptCreateHash(provider_.get(), hash.receive(), nullptr, 0, nullptr, 0, 0)),
            "creating a hash");
    const update::testing::OpenFile file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                     nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    require(static_cast<bool>(file), "opening a file to be digested");
    DWORD count = 0;
    do {
        require(ReadFile(file.get(), block_.data(), static_cast<DWORD>(block_.size()), &count, nullptr),
                "reading a file to be digested");
        require(BCRYPT_SUCCESS(BCryptHashData(hash.get(), block_.data(), count, 0)), "hashing");
    } while (count > 0);
    std::array<UCHAR, 32> bytes{};
    require(BCRYPT_SUCCESS(BCryptFinishHash(hash.get(), bytes.data(), static_cast<ULONG>(bytes.size()), 0)),
            "finishing a hash");
}

}  // namespace vorthmere::bench
