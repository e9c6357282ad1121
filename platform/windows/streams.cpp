#include "platform/streams.h"

#include <windows.h>

#include "platform/windows/system_path.h"
#include "platform/windows/windows_result.h"

namespace vorthmere::update {
namespace {

// As the C library opens files: the game or a virus scanner may have the file open too.
constexpr DWORD kSharedWithReadersAndWriters = FILE_SHARE_READ | FILE_SHARE_WRITE;

FileHandle openFile(const std::filesystem::path& file, DWORD access, DWORD disposition, std::error_code& failure) {
    const SystemPath systemPath(file);
    const HANDLE handle = CreateFileW(systemPath.text(), access, kSharedWithReadersAndWriters, nullptr, disposition,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    failure = resultOf(handle != INVALID_HANDLE_VALUE);
    return FileHandle(failure ? nullptr : handle);
}

}  // namespace

void closeFileHandle(void* handle) noexcept {
    closeQuietly(handle, CloseHandle);
}

FileHandle openToRead(const std::filesystem::path& file, std::error_code& failure) {
    return openFile(file, GENERIC_READ, OPEN_EXISTING, failure);
}

FileHandle createToWrite(const std::filesystem::path& file, std::error_code& failure) {
    return openFile(file, GENERIC_WRITE, CREATE_ALWAYS, failure);
}

std::size_t readBytes(const FileHandle& file, void* buffer, std::size_t size, std::error_code& failure) {
    DWORD count = 0;
    failure = resultOf(ReadFile(file.get(), buffer, static_cast<DWORD>(size), &count, nullptr));
    return failure ? 0 : count;
}

std::error_code writeBytes(const FileHandle& file, const void* bytes, std::size_t size) {
    DWORD count = 0;
    if (!WriteFile(file.get(), bytes, static_cast<DWORD>(size), &count, nullptr)) return lastFailure();
    return count == size ? std::error_code() : failureOf(ERROR_DISK_FULL);
}

std::error_code flushFile(const std::filesystem::path& file) {
    std::error_code failure;
    const FileHandle handle = openFile(file, GENERIC_WRITE, OPEN_EXISTING, failure);
    return failure ? failure : resultOf(FlushFileBuffers(handle.get()));
}

std::error_code closeFile(FileHandle file) {
    return resultOf(CloseHandle(file.release()));
}

}  // namespace vorthmere::update
