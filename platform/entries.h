#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/streams.h"

namespace vorthmere::update {

/// What a folder says of one of its entries. A link is described itself, not what it leads to.
struct EntryAttributes {
    static constexpr std::uint32_t kReadOnly = 0x1;
    static constexpr std::uint32_t kFolder = 0x10;
    static constexpr std::uint32_t kDevice = 0x40;
    static constexpr std::uint32_t kReparsePoint = 0x400;

    std::uint32_t bits = 0;  ///< Windows' file attributes, those without a name here included

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
    std::uint64_t size = 0;  ///< bytes; means nothing for a folder
};

struct FolderEntry {
    std::filesystem::path name;
    EntryAttributes attributes;
};

/// The attributes of an entry itself (GetFileAttributesW); none after a failure. They can be read whoever holds the file.
[[nodiscard]] EntryAttributes entryAttributes(const std::filesystem::path& path, std::error_code& failure);

/// The same with the size (GetFileAttributesExW).
[[nodiscard]] EntryFacts entryFacts(const std::filesystem::path& path, std::error_code& failure);

/// What a path leads to, links followed (CreateFileW without any access, GetFileInformationByHandle).
[[nodiscard]] EntryFacts targetFacts(const std::filesystem::path& path, std::error_code& failure);

/// All entries of one folder but "." and "..", in no order that could be relied on (FindFirstFileExW, FindNextFileW).
///
/// @param failure also set when the listing breaks off; the entries read until then are returned
[[nodiscard]] std::vector<FolderEntry> listFolder(const std::filesystem::path& folder, std::error_code& failure);

/// An absolute path with "." and ".." folded, relative to the current folder (GetFullPathNameW). Asks no disk.
[[nodiscard]] std::filesystem::path fullPath(const std::filesystem::path& path, std::error_code& failure);

/// Opens what a path leads to, only to ask for its name (CreateFileW).
[[nodiscard]] FileHandle openForItsName(const std::filesystem::path& path, std::error_code& failure);

/// The path of an open file or folder with every link resolved (GetFinalPathNameByHandleW), without the "\\?\" prefix.
[[nodiscard]] std::filesystem::path finalPath(const FileHandle& file, std::error_code& failure);

}  // namespace vorthmere::update
