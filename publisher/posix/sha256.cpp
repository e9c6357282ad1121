#include "publisher/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

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
    std::array<unsigned char, kDigestBytes> digest{};
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(digestOf(context_.get()), digest.data(), &length) == 1 && length == kDigestBytes);
    return hexadecimal(digest);
}

}  // namespace vorthmere::publish
