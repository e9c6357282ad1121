#include "publisher/entry_facts.h"

#include <windows.h>

#include <array>

#include "platform/windows/system_path.h"

namespace vorthmere::publish {
namespace {

bool isNotThere(DWORD failure) {
    constexpr std::array<DWORD, 4> kNotThere = {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_INVALID_NAME,
                                                ERROR_DIRECTORY};
    for (const DWORD one : kNotThere)
        if (one == failure) return true;
    return false;
}

EntryFacts notFound(std::error_code& failure) {
    const DWORD number = GetLastError();
    if (!isNotThere(number)) failure.assign(static_cast<int>(number), std::system_category());
    return {};
}

EntryFacts factsFrom(DWORD attributes, DWORD sizeHigh, DWORD sizeLow) {
    EntryFacts facts;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        facts.kind = EntryKind::folder;
    else if ((attributes & FILE_ATTRIBUTE_DEVICE) != 0)
        facts.kind = EntryKind::special;
    else
        facts = {EntryKind::file, std::uint64_t{sizeHigh} << 32 | sizeLow, true};
    return facts;
}

}  // namespace

EntryFacts factsOf(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    WIN32_FILE_ATTRIBUTE_DATA data{};
    const update::SystemPath place(path);
    if (!GetFileAttributesExW(place.text(), GetFileExInfoStandard, &data)) return notFound(failure);
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return {EntryKind::link, 0, true};
    return factsFrom(data.dwFileAttributes, data.nFileSizeHigh, data.nFileSizeLow);
}

EntryFacts factsOfTarget(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    const update::SystemPath place(path);
    HANDLE handle = CreateFileW(place.text(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return notFound(failure);
    BY_HANDLE_FILE_INFORMATION data{};
    const bool known = GetFileInformationByHandle(handle, &data) != 0;
    EntryFacts facts =
        known ? factsFrom(data.dwFileAttributes, data.nFileSizeHigh, data.nFileSizeLow) : notFound(failure);
    CloseHandle(handle);
    return facts;
}

}  // namespace vorthmere::publish
