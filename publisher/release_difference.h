#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "update/file_inventory.h"

namespace vorthmere::publish {

/// The difference of two releases, as an updater sees it.
struct ReleaseDifference {
    std::vector<update::InventoryEntry> reused;   ///< installed already, copied on the player's disk
    std::vector<update::InventoryEntry> fetched;  ///< changed or new, fetched one object each
    std::vector<std::string> removed;             ///< paths of the older release that the newer one no longer holds
    std::uint64_t bytesReused = 0;
    std::uint64_t bytesToFetch = 0;  ///< files of equal content count once for each path, as they are fetched
};

/// @param installed the files of the older release
/// @param wanted    the newer release's inventory
///
/// Compares paths without regard to letter case, as Windows does.
[[nodiscard]] ReleaseDifference compareReleases(const std::vector<update::InventoryEntry>& installed,
                                                const std::vector<update::InventoryEntry>& wanted);

}  // namespace vorthmere::publish
