#include "platform/file_operations.h"

#include <windows.h>

#include "platform/file_status.h"
#include "platform/folder_listing.h"
#include "platform/windows_error.h"

namespace vorthmere::update {
namespace {

void setFailure(std::error_code& failure, BOOL succeeded) {
    if (succeeded)
        failure.clear();
    else
        failure = lastWindowsError();
}

/// Calls `remove`, and once more without the read-only attribute when that is what stood in the way.
void removeEntry(const std::filesystem::path& path, BOOL(WINAPI* remove)(LPCWSTR), std::error_code& failure) {
    setFailure(failure, remove(path.c_str()));
    if (failure.value() == ERROR_ACCESS_DENIED) {
        const DWORD attributes = GetFileAttributesW(path.c_str());
        const bool readOnly = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
        if (readOnly && SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}))
            setFailure(failure, remove(path.c_str()));
    }
    if (isNotFound(failure)) failure.clear();
}

void removeFolder(const std::filesystem::path& folder, std::error_code& failure) {
    const std::vector<FolderEntry> entries = listFolder(folder, failure);
    for (const FolderEntry& entry : entries) {
        if (failure) return;
        if (!entry.isFolder)
            removeEntry(entry.path, DeleteFileW, failure);
        else if (entry.isReparsePoint)
            removeEntry(entry.path, RemoveDirectoryW, failure);
        else
            removeFolder(entry.path, failure);
    }
    if (!failure) removeEntry(folder, RemoveDirectoryW, failure);
}

}  // namespace

bool createFolders(const std::filesystem::path& folder, std::error_code& failure) {
    if (CreateDirectoryW(folder.c_str(), nullptr)) {
        failure.clear();
        return true;
    }
    const std::error_code reason = lastWindowsError();
    if (reason.value() == ERROR_PATH_NOT_FOUND && folder.has_relative_path()) {
        createFolders(folder.parent_path(), failure);
        if (failure) return false;
        setFailure(failure, CreateDirectoryW(folder.c_str(), nullptr));
        return !failure;
    }
    // Whatever the reason given, a folder that is there is what was asked for; one that leads to a file is not.
    if (fileType(folder, failure) == FileType::directory) return false;
    failure = reason;
    return false;
}

void copyFile(const std::filesystem::path& from, const std::filesystem::path& to, Overwrite overwrite,
              std::error_code& failure) {
    setFailure(failure, CopyFileW(from.c_str(), to.c_str(), overwrite == Overwrite::no));
}

void renameFile(const std::filesystem::path& from, const std::filesystem::path& to, std::error_code& failure) {
    setFailure(failure, MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED));
}

void removeFile(const std::filesystem::path& file, std::error_code& failure) {
    removeEntry(file, DeleteFileW, failure);
}

void removeTree(const std::filesystem::path& path, std::error_code& failure) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        failure = lastWindowsError();
        if (isNotFound(failure)) failure.clear();
    } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        removeEntry(path, DeleteFileW, failure);
    } else if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) {
        removeEntry(path, RemoveDirectoryW, failure);
    } else {
        removeFolder(path, failure);
    }
}

}  // namespace vorthmere::update
