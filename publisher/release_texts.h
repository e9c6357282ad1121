#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "update/file_inventory.h"
#include "update/manifest.h"
#include "update/release_channel.h"

namespace vorthmere::publish {

/// Names of a channel's files.
[[nodiscard]] std::string packageName(std::uint32_t release);
[[nodiscard]] std::string inventoryName(std::uint32_t release);
using update::objectName;

/// The last component of a package's address.
[[nodiscard]] std::string packageNameOf(const update::Manifest& manifest);

/// Texts of one release. Lines end in LF; no text depends on anything but the parameters.

/// `KVN_MANAGED_FILES.txt`: one path a line, in the given order, but with the list itself, the updater and the game's
/// program last.
[[nodiscard]] std::string managedFileListText(std::vector<std::string> paths);

/// `kvn_release.txt`: release, version and protocol, one "key=value" a line. For the game and for support; the updater
/// requires the file and never reads it.
[[nodiscard]] std::string releaseMarkerText(const update::Manifest& manifest);

[[nodiscard]] std::string inventoryText(const update::Manifest& manifest,
                                        const std::vector<update::InventoryEntry>& entries);
[[nodiscard]] std::string manifestText(const update::Manifest& manifest);

/// What the system's archive tool prints for a package that holds these entries.
[[nodiscard]] std::string listingText(const std::vector<std::string>& names);

}  // namespace vorthmere::publish
