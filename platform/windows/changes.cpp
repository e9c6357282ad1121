#include "platform/changes.h"

#include <windows.h>

#include "platform/windows/system_path.h"
#include "platform/windows/windows_result.h"

namespace vorthmere::update {

std::error_code createFolder(const std::filesystem::path& folder) {
    return resultOf(CreateDirectoryW(SystemPath(folder).text(), nullptr));
}

std::error_code removeEmptyFolder(const std::filesystem::path& folder) {
    return resultOf(RemoveDirectoryW(SystemPath(folder).text()));
}

std::error_code deleteFile(const std::filesystem::path& file) {
    return resultOf(DeleteFileW(SystemPath(file).text()));
}

std::error_code setAttributes(const std::filesystem::path& path, EntryAttributes attributes) {
    return resultOf(SetFileAttributesW(SystemPath(path).text(), attributes.bits));
}

std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    return resultOf(
        MoveFileExW(SystemPath(from).text(), SystemPath(to).text(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED));
}

std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to, Overwrite overwrite) {
    return resultOf(CopyFileW(SystemPath(from).text(), SystemPath(to).text(), overwrite == Overwrite::no));
}

}  // namespace vorthmere::update
