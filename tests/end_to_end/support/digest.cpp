#include "tests/end_to_end/support/digest.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace vorthmere::end_to_end {

std::string sha256(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 is not available");
    std::string text;
    for (unsigned int i = 0; i < length; ++i) {
        text.push_back(digits[digest[i] >> 4]);
        text.push_back(digits[digest[i] & 15]);
    }
    return text;
}

}  // namespace vorthmere::end_to_end
