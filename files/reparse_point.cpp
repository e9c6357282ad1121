#include "files/reparse_point.h"

#include "platform/entries.h"

namespace vorthmere::update {

bool isReparsePoint(const std::filesystem::path& path) {
    std::error_code failure;
    return entryAttributes(path, failure).isReparsePoint();
}

bool isFreeOfReparsePoints(const std::filesystem::path& rootFolder, std::string_view relativePath) {
    std::filesystem::path current = rootFolder;
    while (!relativePath.empty()) {
        const std::size_t slash = relativePath.find('/');
        current /= std::filesystem::path(relativePath.substr(0, slash));
        if (isReparsePoint(current)) return false;
        relativePath.remove_prefix(slash == std::string_view::npos ? relativePath.size() : slash + 1);
    }
    return true;
}

}  // namespace vorthmere::update
