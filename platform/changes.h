#pragma once

#include <filesystem>
#include <system_error>

#include "platform/entries.h"

namespace vorthmere::update {

/// The calls that change files and folders. None of them decides anything or tries again.

/// Creates one folder whose parent exists (CreateDirectoryW).
[[nodiscard]] std::error_code createFolder(const std::filesystem::path& folder);

/// Removes one empty folder, or a link to a folder: then the link itself (RemoveDirectoryW).
[[nodiscard]] std::error_code removeEmptyFolder(const std::filesystem::path& folder);

/// Removes one file, or a link to a file: then the link itself (DeleteFileW). A read-only one is refused. A file that
/// others hold may keep its name until they let go of it.
[[nodiscard]] std::error_code deleteFile(const std::filesystem::path& file);

/// Sets the attributes of an entry itself (SetFileAttributesW).
[[nodiscard]] std::error_code setAttributes(const std::filesystem::path& path, EntryAttributes attributes);

/// Moves one file (MoveFileExW). An existing target file is replaced; a move to another volume is a copy and a removal.
[[nodiscard]] std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to);

enum class Overwrite { no, yes };

/// Copies one file, its attributes included (CopyFileW). Links are followed.
[[nodiscard]] std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to,
                                       Overwrite overwrite);

}  // namespace vorthmere::update
