#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "update/manifest.h"
#include "update/release_channel.h"

namespace vorthmere::publish {

/// Names of a channel's files.
[[nodiscard]] std::string packageName(std::uint32_t release);
[[nodiscard]] std::string inventoryName(std::uint32_t release);
using update::objectName;

/// The names that a manifest gives to its package and inventory, which need not be those above.
[[nodiscard]] std::string packageNameOf(const update::Manifest& manifest);
[[nodiscard]] std::string inventoryNameOf(const update::Manifest& manifest);

/// `kvn_release.txt`: release, version and protocol, one "key=value" a line. For the game and for support; the updater
/// requires the file and never reads it.
[[nodiscard]] std::string releaseMarkerText(const update::Manifest& manifest);

/// What the system's archive tool prints for a package that holds these entries.
[[nodiscard]] std::string listingText(const std::vector<std::string>& names);

}  // namespace vorthmere::publish
