#pragma once

#include <cstddef>
#include <filesystem>
#include <system_error>

#include "platform/handle.h"

namespace vorthmere::update {

void closeFileHandle(void* handle) noexcept;

/// An open file or one end of a pipe.
using FileHandle = UniqueHandle<OpaqueHandleTraits<closeFileHandle>>;

/// Opens an existing file for reading (CreateFileW). Meanwhile others may read and write it, but not rename or remove
/// it. Fails for a folder. (On Linux others may do anything, and a folder fails only when it is read.)
[[nodiscard]] FileHandle openToRead(const std::filesystem::path& file, std::error_code& failure);

/// Creates a file for writing, or empties an existing one (CreateFileW). Shared like openToRead()'s.
[[nodiscard]] FileHandle createToWrite(const std::filesystem::path& file, std::error_code& failure);

/// Reads the next bytes (ReadFile).
///
/// @param buffer  takes up to `size` bytes
/// @param failure set also at the end of a pipe, which is broken when nobody can write to it any more
/// @return the number of bytes read; 0 at the end, and after a failure
[[nodiscard]] std::size_t readBytes(const FileHandle& file, void* buffer, std::size_t size, std::error_code& failure);

/// Writes `size` bytes (WriteFile). Writing fewer is a failure.
[[nodiscard]] std::error_code writeBytes(const FileHandle& file, const void* bytes, std::size_t size);

/// Waits until the content of an existing file is on the disk (CreateFileW, FlushFileBuffers). Without this a file may
/// be in its place after a power loss and hold nothing but zeros: renames reach the disk in order, content does not.
[[nodiscard]] std::error_code flushFile(const std::filesystem::path& file);

/// Closes a file and reports whether that worked. A network share may report only here that it did not store the file.
[[nodiscard]] std::error_code closeFile(FileHandle file);

}  // namespace vorthmere::update
