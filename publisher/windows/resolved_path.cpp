#include "publisher/resolved_path.h"

#include "platform/entries.h"
#include "publisher/entry_facts.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

fs::path linksResolved(const fs::path& path, std::error_code& failure) {
    const update::FileHandle entry = update::openForItsName(path, failure);
    return failure ? path : update::finalPath(entry, failure);
}

}  // namespace

// The standard library resolves no links here.
fs::path resolvedPath(const fs::path& path, std::error_code& failure) {
    fs::path existing = update::fullPath(path, failure);
    fs::path missing;
    if (existing.filename().empty()) existing = existing.parent_path();
    std::error_code ignored;
    while (!failure && factsOf(existing, ignored).kind == EntryKind::missing && existing.has_relative_path()) {
        missing = missing.empty() ? existing.filename() : existing.filename() / missing;
        existing = existing.parent_path();
    }
    if (failure) return existing;
    const fs::path resolved = linksResolved(existing, failure);
    return missing.empty() ? resolved : resolved / missing;
}

}  // namespace vorthmere::publish
