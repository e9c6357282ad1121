#include "update/managed_path.h"

#include <algorithm>
#include <string>

#include "update/ascii.h"
#include "update/limits.h"
#include "update/release_channel.h"

namespace vorthmere::update {
namespace {

bool isReservedDeviceStem(std::string_view stem) {
    const std::string upper = toAsciiUpper(stem);
    if (upper == "CON" || upper == "PRN" || upper == "AUX" || upper == "NUL") return true;
    return upper.size() == 4 && (upper.starts_with("COM") || upper.starts_with("LPT")) && isAsciiDigit(upper[3]);
}

bool isSafeComponent(std::string_view component) {
    if (component.empty() || component == "." || component == "..") return false;
    if (component.back() == '.' || component.back() == ' ') return false;
    if (toAsciiLower(component) == kWorkFolderName) return false;
    if (isReservedDeviceStem(component.substr(0, component.find('.')))) return false;
    return std::all_of(component.begin(), component.end(), isManagedNameByte);
}

}  // namespace

bool isSafeRelativePath(std::string_view path, bool allowTrailingSlash) {
    constexpr std::string_view forbiddenAnywhere("\\:\0", 3);
    if (path.empty() || path.size() > kMaxManagedPathBytes) return false;
    if (path.front() == '/' || path.front() == '\\') return false;
    if (path.find_first_of(forbiddenAnywhere) != std::string_view::npos) return false;
    if (path.back() == '/') {
        if (!allowTrailingSlash) return false;
        path.remove_suffix(1);
        if (path.empty()) return false;
    }
    while (true) {
        const std::size_t slash = path.find('/');
        if (!isSafeComponent(path.substr(0, slash))) return false;
        if (slash == std::string_view::npos) return true;
        path.remove_prefix(slash + 1);
    }
}

std::string_view nextLine(std::string_view& remaining) {
    const std::size_t feed = remaining.find('\n');
    std::string_view line = remaining.substr(0, feed);
    remaining.remove_prefix(feed == std::string_view::npos ? remaining.size() : feed + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

}  // namespace vorthmere::update
