#pragma once

#include <filesystem>
#include <system_error>

#include "platform/entries.h"

namespace vorthmere::update {

/// The calls that change files and folders. Each makes one call of the system, decides nothing and never retries.

/// Creates one folder whose parent exists (CreateDirectoryW).
[[nodiscard]] std::error_code createFolder(const std::filesystem::path& folder);

/// Removes one empty folder (RemoveDirectoryW). Of a link to a folder it removes the link.
[[nodiscard]] std::error_code removeEmptyFolder(const std::filesystem::path& folder);

/// Removes one file (DeleteFileW). Of a link to a file it removes the link. A read-only file is refused. A file that
/// others have open may keep its name until they close it.
[[nodiscard]] std::error_code deleteFile(const std::filesystem::path& file);

/// Sets the attributes of an entry; links are not followed (SetFileAttributesW).
[[nodiscard]] std::error_code setAttributes(const std::filesystem::path& path, EntryAttributes attributes);

/// Moves one file (MoveFileExW). Replaces an existing target file. Between volumes it copies the file and removes the
/// source.
[[nodiscard]] std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to);

enum class Overwrite { no, yes };

/// Copies one file with its attributes (CopyFileW). Links are followed.
///
/// @param overwrite with `no`, an existing target is a failure
[[nodiscard]] std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to,
                                       Overwrite overwrite);

}  // namespace vorthmere::update
