#pragma once

#include <cstddef>
#include <filesystem>
#include <system_error>

#include "platform/handle.h"

namespace vorthmere::update {

void closeFileHandle(void* handle) noexcept;

/// An open file or one end of a pipe.
using FileHandle = UniqueHandle<OpaqueHandleTraits<closeFileHandle>>;

/// Opens an existing file for reading. Others may read and write it meanwhile, but not rename or remove it. A folder
/// cannot be opened.
[[nodiscard]] FileHandle openToRead(const std::filesystem::path& file, std::error_code& failure);

/// Creates a file for writing, or empties an existing one. Shared in the same way.
[[nodiscard]] FileHandle createToWrite(const std::filesystem::path& file, std::error_code& failure);

/// Reads the next bytes (ReadFile).
///
/// @param buffer takes up to `size` bytes
/// @return how many were read; 0 at the end, and after a failure
[[nodiscard]] std::size_t readBytes(const FileHandle& file, void* buffer, std::size_t size, std::error_code& failure);

/// Writes all of `size` bytes (WriteFile); less than all of them is a failure.
[[nodiscard]] std::error_code writeBytes(const FileHandle& file, const void* bytes, std::size_t size);

/// Waits until the content of an existing file is on the disk (CreateFileW, FlushFileBuffers). Renames reach the disk in
/// order, content does not: after a power loss a file may be in its place and hold nothing but zeros.
[[nodiscard]] std::error_code flushFile(const std::filesystem::path& file);

/// Closes a file and tells whether that worked: a network share reports here what it could not store.
[[nodiscard]] std::error_code closeFile(FileHandle file);

}  // namespace vorthmere::update
