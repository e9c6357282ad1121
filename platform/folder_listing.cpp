#include "platform/folder_listing.h"

#include <string_view>

#include "platform/unique_handle.h"
#include "platform/windows_error.h"

namespace vorthmere::update {

std::vector<FolderEntry> listFolder(const std::filesystem::path& folder, std::error_code& failure) {
    failure.clear();
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileExW((folder / L"*").c_str(), FindExInfoBasic, &found, FindExSearchNameMatch,
                                             nullptr, FIND_FIRST_EX_LARGE_FETCH));
    if (!search) {
        // The root of a drive has no "." entry, so that an empty one is reported as a missing file.
        if (GetLastError() != ERROR_FILE_NOT_FOUND) failure = lastWindowsError();
        return entries;
    }
    do {
        const std::wstring_view name = found.cFileName;
        if (name == L"." || name == L"..") continue;
        entries.push_back({folder / name, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                           (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0});
    } while (FindNextFileW(search.get(), &found));
    if (GetLastError() != ERROR_NO_MORE_FILES) failure = lastWindowsError();
    return entries;
}

bool walkTree(const std::filesystem::path& folder, const std::function<bool(const std::filesystem::path&)>& visit,
              std::error_code& failure) {
    const std::vector<FolderEntry> entries = listFolder(folder, failure);
    if (failure) return false;
    for (const FolderEntry& entry : entries) {
        if (!visit(entry.path)) return false;
        if (entry.isFolder && !entry.isReparsePoint && !walkTree(entry.path, visit, failure)) return false;
    }
    return true;
}

}  // namespace vorthmere::update
