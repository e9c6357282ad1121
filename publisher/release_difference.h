#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "update/file_inventory.h"

namespace vorthmere::publish {

/// What changes between two releases, as an updater sees it.
struct ReleaseDifference {
    std::vector<update::InventoryEntry> reused;   ///< installed already, copied on the player's disk
    std::vector<update::InventoryEntry> fetched;  ///< changed or new, fetched one object each
    std::vector<std::string> removed;             ///< paths of the older release that the newer one no longer holds
    std::uint64_t bytesReused = 0;
    std::uint64_t bytesToFetch = 0;  ///< files of equal content count once for each path, as they are fetched
};

/// @param installed what lies in the older installation
/// @param wanted    the newer release's inventory
///
/// Paths are compared as Windows does, in any letter case.
[[nodiscard]] ReleaseDifference compareReleases(const std::vector<update::InventoryEntry>& installed,
                                                const std::vector<update::InventoryEntry>& wanted);

}  // namespace vorthmere::publish
