#include "platform/file_status.h"

namespace vorthmere::update {

// All that the portable part asks for; the updater itself runs on Windows only.
std::uint64_t fileSize(const std::filesystem::path& path, std::error_code& failure) {
    return std::filesystem::file_size(path, failure);
}

}  // namespace vorthmere::update
