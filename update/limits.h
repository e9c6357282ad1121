#pragma once

#include <cstddef>
#include <cstdint>

namespace vorthmere::update {

/// The most that the updater accepts, and so the most that a publisher may make. Sizes are in bytes.

inline constexpr std::size_t kMaxManifestBytes = 8192;
inline constexpr std::size_t kMaxVersionBytes = 48;
inline constexpr std::size_t kMaxUrlBytes = 512;
inline constexpr std::size_t kMaxNotesBytes = 240;

/// A package (512 MiB).
inline constexpr std::uint64_t kMaxPackageBytes = 536870912;

/// Entries of a package, files and folders together.
inline constexpr std::size_t kMaxArchiveEntries = 2048;

/// A relative path. A folder's includes the "/" at its end.
inline constexpr std::size_t kMaxManagedPathBytes = 240;

/// Files of a release.
inline constexpr std::size_t kMaxManagedFiles = 1024;

inline constexpr std::size_t kMaxManagedFileListBytes = 131072;
inline constexpr std::size_t kMaxInventoryBytes = 393216;

/// Sum of the sizes of a release's files (2 GiB).
inline constexpr std::uint64_t kMaxReleaseBytes = 2147483648;

/// Output of the archive tool.
inline constexpr std::size_t kMaxArchiveToolOutputBytes = 262144;

}  // namespace vorthmere::update
