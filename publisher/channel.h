#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "update/file_inventory.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// Reads the release that a channel offers.
///
/// @param manifest empty on success when the channel has no manifest yet
/// @param error    receives a sentence when the manifest exists but cannot be read, or the updater would refuse it
[[nodiscard]] bool readPublishedManifest(const std::filesystem::path& channel,
                                         std::optional<update::Manifest>& manifest, std::string& error);

/// Judges whether a channel is served at the address that this tool was built for.
///
/// @param error receives one sentence with both addresses when the published manifest names another one
[[nodiscard]] bool hasAddressOfTool(const std::filesystem::path& channel, std::string& error);

/// Reads a release's inventory as the updater does.
///
/// @param entries empty after a failure, so that nobody judges by a part of an inventory
/// @param error   receives one sentence: that the file is missing, or why the updater would refuse it
[[nodiscard]] bool readInventory(const std::filesystem::path& path, const update::Manifest& manifest,
                                 std::vector<update::InventoryEntry>& entries, std::string& error);

/// Reads an inventory whose manifest is gone: the header tells the release.
///
/// @param manifest receives release, protocol, version and digest
/// @param entries, error as in readInventory()
[[nodiscard]] bool readInventoryAlone(const std::filesystem::path& path, update::Manifest& manifest,
                                      std::vector<update::InventoryEntry>& entries, std::string& error);

}  // namespace vorthmere::publish
