#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/streams.h"

namespace vorthmere::update {

/// The attributes of a file or folder. Those of a link describe the link, unless a function follows it.
struct EntryAttributes {
    static constexpr std::uint32_t kReadOnly = 0x1;
    static constexpr std::uint32_t kFolder = 0x10;
    static constexpr std::uint32_t kDevice = 0x40;
    static constexpr std::uint32_t kReparsePoint = 0x400;

    std::uint32_t bits = 0;  ///< all of Windows' file attributes, also those without a name here

    [[nodiscard]] constexpr bool isReadOnly() const {
        return (bits & kReadOnly) != 0;
    }
    [[nodiscard]] constexpr bool isFolder() const {
        return (bits & kFolder) != 0;
    }
    [[nodiscard]] constexpr bool isDevice() const {
        return (bits & kDevice) != 0;
    }
    [[nodiscard]] constexpr bool isReparsePoint() const {
        return (bits & kReparsePoint) != 0;
    }
};

struct EntryFacts {
    EntryAttributes attributes;
    std::uint64_t size = 0;  ///< bytes; meaningless for a folder
};

struct FolderEntry {
    std::filesystem::path name;
    EntryAttributes attributes;
};

/// The attributes of an entry; links are not followed (GetFileAttributesW). None after a failure. They can be read even
/// while others have the file open.
[[nodiscard]] EntryAttributes entryAttributes(const std::filesystem::path& path, std::error_code& failure);

/// The same, with the size (GetFileAttributesExW).
[[nodiscard]] EntryFacts entryFacts(const std::filesystem::path& path, std::error_code& failure);

/// Attributes and size of what a path leads to, links followed (openForItsName(), GetFileInformationByHandle).
[[nodiscard]] EntryFacts targetFacts(const std::filesystem::path& path, std::error_code& failure);

/// All entries of one folder but "." and "..", in no particular order (FindFirstFileExW, FindNextFileW).
///
/// @param failure also set when the listing breaks off; the result then has the entries read so far
[[nodiscard]] std::vector<FolderEntry> listFolder(const std::filesystem::path& folder, std::error_code& failure);

/// Makes a path absolute, relative to the current folder, and folds "." and ".." (GetFullPathNameW). Reads no disk. The
/// system alters some names: "a." becomes "a", and a device's name becomes the device.
[[nodiscard]] std::filesystem::path fullPath(const std::filesystem::path& path, std::error_code& failure);

/// Opens the file or folder that a path leads to, only to read its name and attributes (CreateFileW). Meanwhile others
/// may read, write, rename and remove it.
[[nodiscard]] FileHandle openForItsName(const std::filesystem::path& path, std::error_code& failure);

/// The path of an open file or folder with every link resolved (GetFinalPathNameByHandleW), without the "\\?\"
/// or "\\?\UNC\" in front.
[[nodiscard]] std::filesystem::path finalPath(const FileHandle& file, std::error_code& failure);

}  // namespace vorthmere::update
