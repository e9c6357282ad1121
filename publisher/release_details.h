#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "update/manifest.h"

namespace vorthmere::publish {

/// Judges the publisher's details of a release by the manifest's rules.
///
/// @param details release, version, protocol, mandatory and notes
/// @param error   receives one sentence naming the command-line option and its rule
[[nodiscard]] bool judgeDetails(const update::Manifest& details, std::string& error);

/// The sentence about an option that must be a number from 1 on.
[[nodiscard]] std::string numberRule(std::string_view option, std::uint32_t greatest);

}  // namespace vorthmere::publish
