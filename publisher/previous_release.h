#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "publisher/channel_listing.h"
#include "update/file_inventory.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// The release that players come from.
struct PreviousRelease {
    std::optional<std::uint32_t> release;  ///< none when the channel holds no older release
    std::string packageName;
    std::string packageSha256;
    std::vector<update::InventoryEntry> entries;
    std::string fault;  ///< one sentence on why the inventory cannot be read; then there are no entries
};

/// Players come from the release that was published until now. A repeated run no longer knows it and takes the newest
/// older one in the channel.
[[nodiscard]] PreviousRelease findPreviousRelease(std::uint32_t release,
                                                  const std::optional<update::Manifest>& published,
                                                  const std::filesystem::path& channel, const ChannelListing& listing);

}  // namespace vorthmere::publish
