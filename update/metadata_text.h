#pragma once

#include <string>
#include <vector>

#include "update/file_inventory.h"
#include "update/manifest.h"

namespace vorthmere::update {

/// The metadata files as their parsers read them back. Lines end in LF; a text depends on nothing but the parameters.

[[nodiscard]] std::string manifestText(const Manifest& manifest);
[[nodiscard]] std::string inventoryText(const Manifest& manifest, const std::vector<InventoryEntry>& entries);

/// One path a line in the given order, but with `kRequiredFiles` last.
[[nodiscard]] std::string managedFileListText(std::vector<std::string> paths);

}  // namespace vorthmere::update
