// How a game starts its updater: a sample that needs nothing of the updater's own code.
#include "update_start.h"

#include <windows.h>

#include <fstream>
#include <string>
#include <string_view>

namespace {

/// The folder of this program, without a backslash at its end (except for the root of a drive).
std::wstring gameFolder() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    path.resize(path.find_last_of(L'\\'));
    return path.ends_with(L':') ? path + L'\\' : path;
}

/// The installed release according to `kvn_release.txt`; empty when the file does not name one.
std::wstring installedRelease(const std::wstring& folder) {
    constexpr std::string_view key = "release=";
    std::ifstream file((folder + L"\\kvn_release.txt").c_str());
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(key)) continue;
        const std::string number =
            line.substr(key.size(), line.find_first_not_of("0123456789", key.size()) - key.size());
        return std::wstring(number.begin(), number.end());
    }
    return {};
}

/// Puts a path in quotes. A backslash before the closing quote would make the quote part of the text, so it is doubled.
/// (A path holds no quotes.)
std::wstring quoted(const std::wstring& path) {
    return L'"' + path + (path.ends_with(L'\\') ? L"\\\"" : L"\"");
}

}  // namespace

bool startUpdater(const std::wstring& moreOptions) {
    const std::wstring folder = gameFolder();
    const std::wstring release = installedRelease(folder);
    if (release.empty()) return false;

    const std::wstring updater = folder + L"\\KVNUpdater.exe";
    std::wstring commandLine = quoted(updater) + L" --apply --install " + quoted(folder) + L" --parent " +
                               std::to_wstring(GetCurrentProcessId()) + L" --current " + release;
    if (!moreOptions.empty()) commandLine += L" " + moreOptions;

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    // No handles are inherited: a handle of one of the game's files would keep that file from being replaced.
    constexpr BOOL inheritHandles = FALSE;
    if (!CreateProcessW(updater.c_str(), commandLine.data(), nullptr, nullptr, inheritHandles, 0, nullptr,
                        folder.c_str(), &startup, &started))
        return false;
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return true;
}
