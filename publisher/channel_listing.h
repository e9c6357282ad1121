#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "update/file_inventory.h"

namespace vorthmere::publish {

/// The folder for everything that is not yet published. No updater asks for a name that begins with a dot.
inline constexpr std::string_view kWorkFolderName = ".kvn-release-work";

/// The files of a channel, by their names alone.
struct ChannelListing {
    struct Release {
        bool hasPackage = false;
        bool hasInventory = false;
    };
    std::map<std::uint32_t, Release> releases;
    std::vector<std::string> objects;  ///< names
};

/// @param listing empty on success when the channel does not exist
[[nodiscard]] bool listChannel(const std::filesystem::path& channel, ChannelListing& listing, std::string& error);

/// The highest number that a package or an inventory of the channel has.
[[nodiscard]] std::optional<std::uint32_t> highestRelease(const ChannelListing& listing);

/// One release of a channel, by its inventory.
struct ListedRelease {
    std::uint32_t release = 0;
    std::vector<update::InventoryEntry> entries;
};

/// Reads the inventories of all releases below a number.
///
/// @param releases receives those that could be read
/// @return one sentence for each that could not
[[nodiscard]] std::vector<std::string> readReleasesBelow(std::uint32_t release, const std::filesystem::path& channel,
                                                         const ChannelListing& listing,
                                                         std::vector<ListedRelease>& releases);

}  // namespace vorthmere::publish
