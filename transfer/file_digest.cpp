#include "transfer/file_digest.h"

#include <cstddef>
#include <system_error>
#include <vector>

#include "files/file_status.h"
#include "platform/sha256.h"
#include "platform/streams.h"
#include "update/failing.h"
#include "update/sha256_text.h"

namespace vorthmere::update {
namespace {

constexpr std::size_t kReadBlockBytes = 65536;

}  // namespace

bool sha256File(const std::filesystem::path& path, std::string& digest, std::wstring& error) {
    digest.clear();
    const DigestProvider provider = openSha256();
    std::uint32_t memoryBytes = 0;
    if (!provider || !digestMemorySize(provider, memoryBytes))
        return fail(error, L"Windows could not initialize SHA-256 verification.");

    // Declared before the digest that uses it, and so freed after it.
    std::vector<std::uint8_t> memory(memoryBytes);
    const Digest hash = beginDigest(provider, memory.data(), memoryBytes);
    if (!hash) return fail(error, L"Windows could not create the SHA-256 verifier.");

    std::error_code failure;
    const FileHandle file = openToRead(path, failure);
    if (failure) return fail(error, L"Unable to read the downloaded update archive.");

    std::vector<std::uint8_t> block(kReadBlockBytes);
    while (const std::size_t count = readBytes(file, block.data(), block.size(), failure))
        if (!digestBytes(hash, block.data(), static_cast<std::uint32_t>(count)))
            return fail(error, L"Windows could not hash the update archive.");

    // A failed read ends the loop as well, and the digest of a part of the file proves nothing.
    DigestBytes bytes{};
    if (failure || !finishDigest(hash, bytes)) return fail(error, L"Windows could not finish SHA-256 verification.");
    digest = sha256Text(bytes);
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
