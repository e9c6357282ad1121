#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace vorthmere::publish {

/// What stands at a path.
enum class EntryKind { missing, file, folder, link, special };

struct EntryFacts {
    EntryKind kind = EntryKind::missing;
    std::uint64_t size = 0;  ///< of a file, in bytes

    /// False for a file that only some accounts may read, and for a folder that only some may enter.
    bool everybodyMayRead = true;
};

/// What an entry is itself; a link, on Windows any reparse point, is EntryKind::link, wherever it leads.
///
/// @param failure cleared, or set when that cannot be found out; a path at which there is nothing is no failure
[[nodiscard]] EntryFacts factsOf(const std::filesystem::path& path, std::error_code& failure);

/// What a path leads to, links followed. A link that leads nowhere is EntryKind::missing.
[[nodiscard]] EntryFacts factsOfTarget(const std::filesystem::path& path, std::error_code& failure);

}  // namespace vorthmere::publish
