#include "platform/entries.h"

#include <windows.h>

#include <string>
#include <string_view>

#include "platform/windows/system_path.h"
#include "platform/windows/windows_result.h"

namespace vorthmere::update {
namespace {

struct FindHandleTraits {
    using Type = HANDLE;
    static Type none() noexcept {
        return INVALID_HANDLE_VALUE;
    }
    static void close(Type handle) noexcept {
        FindClose(handle);
    }
};

using FindHandle = UniqueHandle<FindHandleTraits>;

std::uint64_t joinHalves(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32) | low;
}

/// Asks for a text of unknown length. `ask(buffer, size)` returns its length, 0 on failure, or the size that it needs.
template <typename Ask>
std::wstring askForText(const Ask& ask, std::error_code& failure) {
    failure.clear();
    std::wstring text(MAX_PATH, L'\0');
    while (true) {
        const DWORD length = ask(text.data(), static_cast<DWORD>(text.size()));
        if (length == 0) {
            failure = lastFailure();
            return {};
        }
        const bool complete = length < text.size();
        text.resize(length);
        if (complete) return text;
    }
}

}  // namespace

EntryAttributes entryAttributes(const std::filesystem::path& path, std::error_code& failure) {
    const SystemPath systemPath(path);
    const DWORD attributes = GetFileAttributesW(systemPath.text());
    failure = resultOf(attributes != INVALID_FILE_ATTRIBUTES);
    return {failure ? 0 : attributes};
}

EntryFacts entryFacts(const std::filesystem::path& path, std::error_code& failure) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    failure = resultOf(GetFileAttributesExW(SystemPath(path).text(), GetFileExInfoStandard, &data));
    return {{data.dwFileAttributes}, joinHalves(data.nFileSizeHigh, data.nFileSizeLow)};
}

EntryFacts targetFacts(const std::filesystem::path& path, std::error_code& failure) {
    const FileHandle file = openForItsName(path, failure);
    if (failure) return {};
    BY_HANDLE_FILE_INFORMATION information{};
    failure = resultOf(GetFileInformationByHandle(file.get(), &information));
    return {{information.dwFileAttributes}, joinHalves(information.nFileSizeHigh, information.nFileSizeLow)};
}

std::vector<FolderEntry> listFolder(const std::filesystem::path& folder, std::error_code& failure) {
    failure.clear();
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAW found{};
    const SystemPath pattern(folder / L"*");
    const FindHandle search(FindFirstFileExW(pattern.text(), FindExInfoBasic, &found, FindExSearchNameMatch, nullptr,
                                             FIND_FIRST_EX_LARGE_FETCH));
    if (!search) {
        // The root of a drive has no "." entry, so an empty one is reported as a missing file.
        if (GetLastError() != ERROR_FILE_NOT_FOUND) failure = lastFailure();
        return entries;
    }
    do {
        const std::wstring_view name = found.cFileName;
        if (name != L"." && name != L"..") entries.push_back({name, {found.dwFileAttributes}});
    } while (FindNextFileW(search.get(), &found));
    if (GetLastError() != ERROR_NO_MORE_FILES) failure = lastFailure();
    return entries;
}

std::filesystem::path fullPath(const std::filesystem::path& path, std::error_code& failure) {
    return askForText(
        [&path](wchar_t* text, DWORD size) { return GetFullPathNameW(path.c_str(), size, text, nullptr); }, failure);
}

FileHandle openForItsName(const std::filesystem::path& path, std::error_code& failure) {
    const SystemPath systemPath(path);
    const HANDLE file =
        CreateFileW(systemPath.text(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    failure = resultOf(file != INVALID_HANDLE_VALUE);
    return FileHandle(failure ? nullptr : file);
}

std::filesystem::path finalPath(const FileHandle& file, std::error_code& failure) {
    return withoutExtendedPrefix(askForText(
        [&file](wchar_t* text, DWORD size) {
            return GetFinalPathNameByHandleW(file.get(), text, size, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
        },
        failure));
}

}  // namespace vorthmere::update
