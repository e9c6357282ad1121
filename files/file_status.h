#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace vorthmere::update {

/// What is at a path, as far as the updater makes a difference.
enum class FileType {
    notFound,
    regular,
    directory,
    other,  ///< a link that was not followed, a device, or unknown after a hard error
};

/// The type of what a path leads to, links followed.
///
/// @param failure cleared, or set to a hard error
/// @return FileType::other after a hard error. A missing file or folder, a link to nothing and a name that cannot exist
///         are no hard errors but FileType::notFound.
[[nodiscard]] FileType fileType(const std::filesystem::path& path, std::error_code& failure);

/// Like fileType(), but throws a hard error as std::filesystem::filesystem_error with the name of the operation.
[[nodiscard]] FileType fileTypeOrThrow(const std::filesystem::path& path, const char* operation);

/// Like fileTypeOrThrow(), for a path below a folder that must exist. A missing folder is a hard error of the folder:
/// its volume may have gone away, and then nothing is known about the files in it.
[[nodiscard]] FileType fileTypeBelowOrThrow(const std::filesystem::path& folder,
                                            const std::filesystem::path& relativePath, const char* operation);

/// The type of an entry itself: a symbolic link or junction is FileType::other, wherever it leads. `failure` is set as
/// by fileType().
[[nodiscard]] FileType entryType(const std::filesystem::path& path, std::error_code& failure);

/// The size, in bytes, of the file that a path leads to, links followed.
///
/// @param failure cleared, or set when there is no file, also for a folder or a device; then the result is 0
[[nodiscard]] std::uint64_t fileSize(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::update
