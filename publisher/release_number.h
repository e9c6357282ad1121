#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "publisher/channel_listing.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// Judges the number of a release by what the channel holds: the manifest, and also the packages and inventories, so
/// that a lost manifest does not make the channel forget its numbers.
///
/// @param published  the manifest, if there is one
/// @param allowJump  let a number pass that leaves out more than a million, or hardly leaves any for later releases
/// @param error      receives one sentence with the number that stands against it
[[nodiscard]] bool judgeReleaseNumber(std::uint32_t release, const std::optional<update::Manifest>& published,
                                      const ChannelListing& listing, bool allowJump, std::string& error);

}  // namespace vorthmere::publish
