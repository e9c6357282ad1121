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
    std::uint32_t release = 0;  ///< 0 when it is not known: a folder does not tell
    std::vector<update::InventoryEntry> entries;

    /// True for a folder in which the player may have further files. Then only `managed` is removed by an update.
    bool holdsOtherFiles = false;
    std::vector<std::string> managed;
};

/// Finds out what an older release consists of.
///
/// @param from   its inventory, a channel that offers it, an installation, or the game folder that it was built from.
///               Of an installation the files on its managed-file list are managed; a game folder has no such list, and
///               everything in it is.
/// @param wanted the files of the release that it is to be updated to: only on the way to them links matter
/// @param error  receives one sentence, also when the folder is nothing of these
[[nodiscard]] bool readInstalledRelease(const std::filesystem::path& from,
                                        const std::vector<update::InventoryEntry>& wanted, Console& console,
                                        InstalledRelease& installed, std::string& error);

}  // namespace vorthmere::publish
