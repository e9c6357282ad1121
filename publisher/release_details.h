#pragma once

#include <string>

#include "update/manifest.h"

namespace vorthmere::publish {

/// Judges what the publisher says of a release by the manifest's rules.
///
/// @param details release, version, protocol, mandatory and notes
/// @param error   receives one sentence naming the command-line option and its rule
[[nodiscard]] bool judgeDetails(const update::Manifest& details, std::string& error);

}  // namespace vorthmere::publish
