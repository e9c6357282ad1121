#include "update/managed_file_list.h"

#include <set>

#include "update/managed_path.h"
#include "update/release_channel.h"

namespace vorthmere::update {

bool parseManagedFileList(std::string_view text, std::vector<std::string>& paths, std::string& error) {
    paths.clear();
    error.clear();
    const auto fail = [&error](std::string_view sentence) {
        error = sentence;
        return false;
    };

    if (text.empty() || text.size() > kMaxManagedFileListBytes || text.find('\0') != std::string_view::npos)
        return fail("Managed-file list size is invalid.");

    std::set<std::string_view> seen;
    while (!text.empty()) {
        const std::string_view line = nextLine(text);
        if (line.empty()) continue;
        if (!isSafeRelativePath(line, false) || !seen.insert(line).second)
            return fail("Managed-file list contains an unsafe or duplicate path.");
        paths.emplace_back(line);
        if (paths.size() > kMaxManagedFiles) return fail("Managed-file list is too large.");
    }

    for (const std::string_view required : {kManagedFileListName, kGameExecutableName, kUpdaterExecutableName})
        if (!seen.contains(required)) return fail("Managed-file list is missing a required runtime.");
    return true;
}

}  // namespace vorthmere::update
