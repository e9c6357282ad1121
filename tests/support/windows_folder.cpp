#include "tests/support/windows_folder.h"

#include <string>
#include <string_view>

namespace vorthmere::update::testing {

std::filesystem::path extendedPath(const std::filesystem::path& path) {
    std::filesystem::path absolute = path;
    absolute.make_preferred();
    if (absolute.native().starts_with(L"\\\\")) return absolute;
    return L"\\\\?\\" + absolute.native();
}

std::vector<WIN32_FIND_DATAW> entriesIn(const std::filesystem::path& folder) {
    std::vector<WIN32_FIND_DATAW> entries;
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW((extendedPath(folder).native() + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return entries;
    do {
        const std::wstring_view name = entry.cFileName;
        if (name != L"." && name != L"..") entries.push_back(entry);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    return entries;
}

}  // namespace vorthmere::update::testing
