#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "publisher/channel_listing.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// Judges the number of a release by the manifest, packages and inventories of the channel. So the channel keeps its
/// numbers when its manifest is lost.
///
/// @param published  the manifest, if there is one
/// @param allowJump  accept a number that leaves out more than a million, or leaves too few for later releases
/// @param error      receives one sentence with the number that is in its way
[[nodiscard]] bool judgeReleaseNumber(std::uint32_t release, const std::optional<update::Manifest>& published,
                                      const ChannelListing& listing, bool allowJump, std::string& error);

}  // namespace vorthmere::publish
