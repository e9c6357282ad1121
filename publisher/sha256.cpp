#include "publisher/sha256.h"

namespace vorthmere::publish {

std::string sha256Of(std::string_view text) {
    Sha256 digest;
    digest.add({text.data(), text.size()});
    return digest.finish();
}

}  // namespace vorthmere::publish
