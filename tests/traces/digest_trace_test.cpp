#include <optional>

#include "tests/support/temporary_folder.h"
#include "tests/support/watched_memory.h"
#include "tests/traces/trace_fixture.h"
#include "transfer/file_digest.h"

namespace vorthmere::update::traces {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;

std::optional<testing::WatchedMemory> workMemory;

NTSTATUS WINAPI createHash(BCRYPT_ALG_HANDLE provider, BCRYPT_HASH_HANDLE* hash, PUCHAR memory, ULONG bytes,
                           PUCHAR secret, ULONG secretBytes, ULONG flags) {
    EXPECT_EQ(secret, nullptr);
    EXPECT_EQ(flags, 0u);
    log().emplace_back("create hash");
    workMemory.emplace(memory, [] { log().emplace_back("memory freed"); });
    return BCryptCreateHash(provider, hash, memory, bytes, secret, secretBytes, flags);
}
NTSTATUS WINAPI destroyHash(BCRYPT_HASH_HANDLE hash) {
    log().emplace_back("destroy hash");
    return BCryptDestroyHash(hash);
}
NTSTATUS WINAPI closeProvider(BCRYPT_ALG_HANDLE provider, ULONG flags) {
    log().emplace_back("close provider");
    return BCryptCloseAlgorithmProvider(provider, flags);
}

class DigestTrace : public TraceTest {
protected:
    DigestTrace() {
        writeFile(file, "abc");
    }
    ~DigestTrace() override {
        workMemory.reset();
    }
    Replaced<decltype(traced_BCryptCreateHash)> creating{traced_BCryptCreateHash, createHash};
    Replaced<decltype(traced_BCryptDestroyHash)> destroying{traced_BCryptDestroyHash, destroyHash};
    Replaced<decltype(traced_BCryptCloseAlgorithmProvider)> closing{traced_BCryptCloseAlgorithmProvider, closeProvider};
    TemporaryFolder folder;
    std::filesystem::path file = folder / L"a";
    std::string digest;
    std::wstring error;
};

TEST_F(DigestTrace, TheHashGoesBeforeItsMemoryAndItsProvider) {
    EXPECT_TRUE(sha256File(file, digest, error));
    EXPECT_THAT(log(), ElementsAre("create hash", "destroy hash", "memory freed", "close provider"));
}

TEST_F(DigestTrace, TheOrderIsTheSameAfterAFailure) {
    EXPECT_FALSE(sha256File(folder / L"missing", digest, error));
    EXPECT_THAT(log(), ElementsAre("create hash", "destroy hash", "memory freed", "close provider"));
}

TEST_F(DigestTrace, AReadThatEndsBeforeTheEndGivesNoDigest) {
    static int reads = 0;
    reads = 0;
    const Replaced reading(traced_ReadFile,
                           [](HANDLE handle, void* buffer, DWORD size, DWORD* count, OVERLAPPED* at) -> BOOL {
                               if (++reads == 1) return ReadFile(handle, buffer, size, count, at);
                               SetLastError(ERROR_CRC);
                               return FALSE;
                           });
    EXPECT_FALSE(sha256File(file, digest, error));
    EXPECT_EQ(error, L"Windows could not finish SHA-256 verification.");
    EXPECT_EQ(digest, "");
}

TEST_F(DigestTrace, EachFailureOfTheSystemsDigestHasItsSentence) {
    {
        const Replaced call(traced_BCryptOpenAlgorithmProvider,
                            [](BCRYPT_ALG_HANDLE*, LPCWSTR, LPCWSTR, ULONG) -> NTSTATUS { return -1; });
        EXPECT_FALSE(sha256File(file, digest, error));
        EXPECT_EQ(error, L"Windows could not initialize SHA-256 verification.");
    }
    {
        error.clear();
        const Replaced call(traced_BCryptGetProperty,
                            [](BCRYPT_HANDLE, LPCWSTR, PUCHAR, ULONG, ULONG*, ULONG) -> NTSTATUS { return -1; });
        EXPECT_FALSE(sha256File(file, digest, error));
        EXPECT_EQ(error, L"Windows could not initialize SHA-256 verification.");
    }
    {
        const Replaced call(
            traced_BCryptCreateHash,
            [](BCRYPT_ALG_HANDLE, BCRYPT_HASH_HANDLE*, PUCHAR, ULONG, PUCHAR, ULONG, ULONG) -> NTSTATUS { return -1; });
        EXPECT_FALSE(sha256File(file, digest, error));
        EXPECT_EQ(error, L"Windows could not create the SHA-256 verifier.");
    }
    {
        const Replaced call(traced_BCryptHashData,
                            [](BCRYPT_HASH_HANDLE, PUCHAR, ULONG, ULONG) -> NTSTATUS { return -1; });
        EXPECT_FALSE(sha256File(file, digest, error));
        EXPECT_EQ(error, L"Windows could not hash the update archive.");
    }
    {
        const Replaced call(traced_BCryptFinishHash,
                            [](BCRYPT_HASH_HANDLE, PUCHAR, ULONG, ULONG) -> NTSTATUS { return -1; });
        EXPECT_FALSE(sha256File(file, digest, error));
        EXPECT_EQ(error, L"Windows could not finish SHA-256 verification.");
    }
}

}  // namespace
}  // namespace vorthmere::update::traces
