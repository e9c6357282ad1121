#include <windows.h>
// windows.h has to come first.
#include <wincrypt.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/end_to_end/probe/subcommands.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::probe {
namespace {

constexpr DWORD kEncoding = X509_ASN_ENCODING;

struct StoreTraits {
    using Type = HCERTSTORE;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type handle) noexcept {
        CertCloseStore(handle, 0);
    }
};

}  // namespace

int trust(Arguments arguments) {
    if (arguments.size() != 1) return kUsageError;
    std::ifstream file(std::filesystem::path{arguments[0]}, std::ios::binary);
    const std::string encoded{std::istreambuf_iterator<char>(file), {}};
    const auto* bytes = reinterpret_cast<const BYTE*>(encoded.data());
    const update::UniqueHandle<StoreTraits> store(
        CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root"));
    if (!store || !CertAddEncodedCertificateToStore(store.get(), kEncoding, bytes, static_cast<DWORD>(encoded.size()),
                                                    CERT_STORE_ADD_REPLACE_EXISTING, nullptr)) {
        std::fprintf(stderr, "the certificate cannot be added: error %lu\n", GetLastError());
        return 1;
    }
    std::puts("trusted");
    return 0;
}

}  // namespace vorthmere::probe
