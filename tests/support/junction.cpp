#include "tests/support/junction.h"

#include <windows.h>
// windows.h has to come first.
#include <winioctl.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/windows_handle.h"

namespace vorthmere::update::testing {
namespace {

/// The head of a junction's data, before its two names.
struct JunctionHead {
    DWORD tag = IO_REPARSE_TAG_MOUNT_POINT;
    WORD dataBytes = 0;
    WORD reserved = 0;
    WORD targetOffset = 0;
    WORD targetBytes = 0;
    WORD shownOffset = 0;
    WORD shownBytes = 0;
};

constexpr std::size_t kHeadBytesBeforeData = 8;

WORD bytesOf(const std::wstring& text) {
    return static_cast<WORD>(text.size() * sizeof(wchar_t));
}

std::vector<std::byte> junctionData(const std::wstring& shown) {
    const std::wstring target = L"\\??\\" + shown;
    JunctionHead head;
    head.targetBytes = bytesOf(target);
    head.shownOffset = static_cast<WORD>(head.targetBytes + sizeof(wchar_t));
    head.shownBytes = bytesOf(shown);
    std::vector<std::byte> data(sizeof(head) + head.shownOffset + head.shownBytes + sizeof(wchar_t));
    head.dataBytes = static_cast<WORD>(data.size() - kHeadBytesBeforeData);
    std::memcpy(data.data(), &head, sizeof(head));
    std::memcpy(data.data() + sizeof(head), target.data(), head.targetBytes);
    std::memcpy(data.data() + sizeof(head) + head.shownOffset, shown.data(), head.shownBytes);
    return data;
}

}  // namespace

void makeJunction(const std::filesystem::path& junction, const std::filesystem::path& target) {
    std::vector<std::byte> data = junctionData(target.native());
    CreateDirectoryW(junction.c_str(), nullptr);
    OpenFile folder(CreateFileW(junction.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    DWORD unused = 0;
    const BOOL made = DeviceIoControl(folder.get(), FSCTL_SET_REPARSE_POINT, data.data(),
                                      static_cast<DWORD>(data.size()), nullptr, 0, &unused, nullptr);
    const DWORD error = GetLastError();
    folder.reset();
    if (made) return;
    RemoveDirectoryW(junction.c_str());
    throw std::runtime_error("no junction can be made here, error " + std::to_string(error));
}

}  // namespace vorthmere::update::testing
