#include "platform/reparse_point.h"

#include <windows.h>

namespace vorthmere::update {

bool isReparsePoint(const std::filesystem::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
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
