#include "platform/changes.h"

#include <windows.h>

#include "platform/windows/windows_result.h"

namespace vorthmere::update {

std::error_code createFolder(const std::filesystem::path& folder) {
    return resultOf(CreateDirectoryW(folder.c_str(), nullptr));
}

std::error_code removeEmptyFolder(const std::filesystem::path& folder) {
    return resultOf(RemoveDirectoryW(folder.c_str()));
}

std::error_code deleteFile(const std::filesystem::path& file) {
    return resultOf(DeleteFileW(file.c_str()));
}

std::error_code setAttributes(const std::filesystem::path& path, EntryAttributes attributes) {
    return resultOf(SetFileAttributesW(path.c_str(), attributes.bits));
}

std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    return resultOf(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED));
}

std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to, Overwrite overwrite) {
    return resultOf(CopyFileW(from.c_str(), to.c_str(), overwrite == Overwrite::no));
}

}  // namespace vorthmere::update
