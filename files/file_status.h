#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace vorthmere::update {

/// What is at a path, as far as the updater tells things apart.
enum class FileType {
    notFound,
    regular,
    directory,
    other,  ///< a link that was not followed, a device, anything that could not be classified
};

/// The type of what a path leads to, links followed.
///
/// @param failure cleared, or set to a hard error; then the result is FileType::other. A missing file or folder, a link
///                to nothing and a name that cannot exist are no errors but FileType::notFound.
[[nodiscard]] FileType fileType(const std::filesystem::path& path, std::error_code& failure);

/// Like fileType(), but throws a hard error as std::filesystem::filesystem_error with the given operation name.
[[nodiscard]] FileType fileTypeOrThrow(const std::filesystem::path& path, const char* operation);

/// Like fileTypeOrThrow() for a path below a folder that must be there: where the folder itself is gone, its volume was
/// taken away, say, nothing is known about what it held, and that is a hard error of the folder.
[[nodiscard]] FileType fileTypeBelowOrThrow(const std::filesystem::path& folder,
                                            const std::filesystem::path& relativePath, const char* operation);

/// The type of a directory entry itself: a symbolic link or junction is FileType::other, wherever it leads.
[[nodiscard]] FileType entryType(const std::filesystem::path& path, std::error_code& failure);

/// The size in bytes of the file that a path leads to, links followed. `failure` is set for anything that is not a
/// file.
[[nodiscard]] std::uint64_t fileSize(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::update
