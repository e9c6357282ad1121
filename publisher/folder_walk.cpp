#include "publisher/folder_walk.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "publisher/folder_names.h"
#include "publisher/in_quotes.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

/// In byte order, so that the sentences about a folder do not depend on the file system.
bool listNames(const fs::path& folder, std::vector<fs::path>& names, std::string& error) {
    std::error_code failure;
    names = namesIn(folder, failure);
    if (failure) error = "The folder " + inQuotes(folder) + " cannot be read: " + failure.message() + ".";
    std::sort(names.begin(), names.end());
    return !failure;
}

bool walk(const fs::path& folder, const std::string& prefix, const std::function<bool(const WalkedEntry&)>& visit,
          std::string& error) {
    std::vector<fs::path> names;
    if (!listNames(folder, names, error)) return false;
    for (const fs::path& name : names) {
        WalkedEntry entry{prefix + name.string(), folder / name, {}};
        std::error_code failure;
        entry.facts = factsOf(entry.place, failure);
        if (failure) {
            error = inQuotes(entry.place) + " cannot be read: " + failure.message() + ".";
            return false;
        }
        const bool enters = visit(entry) && entry.facts.kind == EntryKind::folder;
        if (enters && !walk(entry.place, entry.path + "/", visit, error)) return false;
    }
    return true;
}

}  // namespace

bool walkFolder(const fs::path& folder, const std::function<bool(const WalkedEntry&)>& visit, std::string& error) {
    return walk(folder, "", visit, error);
}

}  // namespace vorthmere::publish
