#include "publisher/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace vorthmere::publish {
namespace {

void require(bool succeeded) {
    if (!succeeded) throw std::runtime_error("The SHA-256 digest cannot be computed.");
}

}  // namespace

void Sha256::Release::operator()(evp_md_ctx_st* context) const {
    EVP_MD_CTX_free(context);
}

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    require(context_ && EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) == 1);
}

void Sha256::add(std::span<const char> bytes) {
    require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()) == 1);
}

std::string Sha256::finish() {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(context_.get(), digest.data(), &length) == 1);
    std::string text;
    for (const unsigned char byte : std::span(digest).first(length)) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string sha256Of(std::string_view text) {
    Sha256 digest;
    digest.add({text.data(), text.size()});
    return digest.finish();
}

}  // namespace vorthmere::publish
