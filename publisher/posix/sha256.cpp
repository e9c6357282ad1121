#include "publisher/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <cstdint>
#include <stdexcept>

#include "update/sha256_text.h"

namespace vorthmere::publish {
namespace {

void require(bool succeeded) {
    if (!succeeded) throw std::runtime_error("The SHA-256 digest cannot be computed.");
}

EVP_MD_CTX* digestOf(void* context) {
    return static_cast<EVP_MD_CTX*>(context);
}

}  // namespace

void Sha256::Release::operator()(void* context) const {
    EVP_MD_CTX_free(digestOf(context));
}

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    require(context_ && EVP_DigestInit_ex(digestOf(context_.get()), EVP_sha256(), nullptr) == 1);
}

void Sha256::add(std::span<const char> bytes) {
    require(EVP_DigestUpdate(digestOf(context_.get()), bytes.data(), bytes.size()) == 1);
}

std::string Sha256::finish() {
    std::array<std::uint8_t, update::kSha256Bytes> digest{};
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(digestOf(context_.get()), digest.data(), &length) == 1 &&
            length == update::kSha256Bytes);
    return update::sha256Text(digest);
}

}  // namespace vorthmere::publish
