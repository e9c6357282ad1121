#include "update/managed_file_list.h"

#include <algorithm>
#include <set>

#include "update/failing.h"
#include "update/limits.h"
#include "update/managed_path.h"
#include "update/metadata_file.h"
#include "update/release_channel.h"

namespace vorthmere::update {

bool parseManagedFileList(std::string_view text, std::vector<std::string>& paths, std::string& error) {
    paths.clear();
    error.clear();
    if (text.empty() || text.size() > kMaxManagedFileListBytes || text.find('\0') != std::string_view::npos)
        return fail(error, "Managed-file list size is invalid.");

    std::set<std::string_view> seen;
    while (!text.empty()) {
        const std::string_view line = nextLine(text);
        if (line.empty()) continue;
        if (!isSafeRelativePath(line, false) || !seen.insert(line).second)
            return fail(error, "Managed-file list contains an unsafe or duplicate path.");
        paths.emplace_back(line);
        if (paths.size() > kMaxManagedFiles) return fail(error, "Managed-file list is too large.");
    }

    for (const std::string_view required : kRequiredFiles)
        if (!seen.contains(required)) return fail(error, "Managed-file list is missing a required runtime.");
    return true;
}

bool loadManagedFileListFrom(const std::filesystem::path& file, std::vector<std::string>& paths, std::wstring& error) {
    const auto parse = [&paths](std::string_view text, std::string& fault) {
        return parseManagedFileList(text, paths, fault);
    };
    return loadMetadataFile(file, kMaxManagedFileListBytes, parse, error);
}

bool loadManagedFileList(const std::filesystem::path& folder, std::vector<std::string>& paths, std::wstring& error) {
    return loadManagedFileListFrom(folder / kManagedFileListName, paths, error);
}

}  // namespace vorthmere::update
