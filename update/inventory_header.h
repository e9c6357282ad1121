#pragma once

#include <string_view>

#include "update/manifest.h"

namespace vorthmere::update {

/// Takes the release that an inventory belongs to from its header. Only parseFileInventory() judges the inventory, the
/// first line included.
///
/// @param manifest receives digest, release, protocol and version; partly filled on failure
/// @return false when the lines after the first are not those of a header
[[nodiscard]] bool readInventoryHeader(std::string_view text, Manifest& manifest);

}  // namespace vorthmere::update
