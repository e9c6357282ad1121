#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace vorthmere::publish {

/// What is at a path.
enum class EntryKind { missing, file, folder, link, special };

struct EntryFacts {
    EntryKind kind = EntryKind::missing;
    std::uint64_t size = 0;  ///< of a file, in bytes

    /// False for a file that only some accounts may read, or a folder that only some may enter. Always true on Windows.
    bool everybodyMayRead = true;
};

/// What an entry is itself. A link, on Windows any reparse point, is EntryKind::link, wherever it leads.
///
/// @param failure cleared, or set when the system does not tell; a missing entry is no failure
[[nodiscard]] EntryFacts factsOf(const std::filesystem::path& path, std::error_code& failure);

/// The same for what a path leads to. A link that leads nowhere is EntryKind::missing.
[[nodiscard]] EntryFacts factsOfTarget(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::publish
