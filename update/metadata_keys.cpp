#include "update/metadata_keys.h"

namespace vorthmere::update {

std::string fieldLine(std::string_view key, std::string_view value) {
    std::string line(key);
    return line.append("=").append(value);
}

}  // namespace vorthmere::update
