#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "publisher/console.h"
#include "update/file_inventory.h"

namespace vorthmere::publish {

/// An older release as a player may have it.
struct InstalledRelease {
    std::uint32_t release = 0;  ///< 0 when unknown: a folder does not tell
    std::vector<update::InventoryEntry> entries;

    /// True for a folder, in which the player may have further files. An update then removes only files of `managed`.
    bool holdsOtherFiles = false;
    std::vector<std::string> managed;
};

/// Finds out what an older release consists of.
///
/// @param from   its inventory, a channel that offers it, an installation, or the game folder that it was built from.
///               An installation has a list of its managed files. A game folder has none: all its files are managed.
/// @param wanted the files of the newer release: only links in their paths matter
/// @param error  receives one sentence, also when the folder is none of these
[[nodiscard]] bool readInstalledRelease(const std::filesystem::path& from,
                                        const std::vector<update::InventoryEntry>& wanted, Console& console,
                                        InstalledRelease& installed, std::string& error);

}  // namespace vorthmere::publish
