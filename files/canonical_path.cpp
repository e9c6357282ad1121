#include "files/canonical_path.h"

#include <algorithm>
#include <string>

#include "platform/entries.h"
#include "platform/failure.h"

namespace vorthmere::update {
namespace {

// "\\server\share"
constexpr std::ptrdiff_t kSeparatorsOfAShare = 3;

/// True for a drive and for a network share, which have no parent folder. Of full paths only those of shares begin with
/// a separator.
bool isRoot(const std::filesystem::path& path) {
    const auto isSeparator = [](auto c) { return c == '/' || c == '\\'; };
    const std::filesystem::path::string_type& name = path.native();
    if (!name.empty() && isSeparator(name.front()))
        return std::count_if(name.begin(), name.end(), isSeparator) <= kSeparatorsOfAShare;
    return !path.has_relative_path();
}

}  // namespace

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    if (path.empty()) return {};
    std::error_code failure;
    std::filesystem::path absolute = fullPath(path, failure);
    if (failure) throw std::filesystem::filesystem_error("absolute", path, failure);
    return absolute;
}

std::filesystem::path weaklyCanonicalPath(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    if (path.empty()) return {};
    // An existing file is opened before its path is folded: folding drops a dot at the end of a name and takes the file
    // "NUL .txt" for a device.
    if (const FileHandle file = openForItsName(path, failure)) return finalPath(file, failure);
    if (!isNotFound(failure)) return {};
    // The system folds "." and "..", not path::lexically_normal(): not every library knows the paths of network
    // folders, and then it drops one of the two backslashes that they begin with.
    std::filesystem::path whole = fullPath(path, failure);
    if (failure) return {};
    std::filesystem::path existing = whole;
    std::filesystem::path rest;
    while (!isRoot(existing)) {
        rest = rest.empty() ? existing.filename() : existing.filename() / rest;
        existing = existing.parent_path();
        // The folder is there, so a failure to resolve its path is final, even "path not found": that is the error for
        // a volume without a letter.
        if (const FileHandle file = openForItsName(existing, failure)) {
            const std::filesystem::path resolved = finalPath(file, failure);
            return failure ? resolved : resolved / rest;
        }
        if (!isNotFound(failure)) return {};
    }
    failure.clear();
    return whole;
}

}  // namespace vorthmere::update
