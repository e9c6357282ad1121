#include "tests/end_to_end/support/digest.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace vorthmere::end_to_end {

std::string sha256TextOf(std::string_view bytes) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("no digest of " + std::to_string(bytes.size()) + " bytes");
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        text.push_back("0123456789abcdef"[digest.at(i) >> 4U]);
        text.push_back("0123456789abcdef"[digest.at(i) & 15U]);
    }
    return text;
}

}  // namespace vorthmere::end_to_end
