#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "publisher/console.h"
#include "publisher/release_difference.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// What an updater would do.
struct UpdatePlan {
    update::Manifest target;        ///< the release that the channel offers
    std::uint32_t fromRelease = 0;  ///< 0 when it is not known: a folder does not tell
    ReleaseDifference difference;
    bool incremental = false;   ///< the changed files are fetched, else the complete package
    std::string packageReason;  ///< what is wrong with the target's inventory; then nothing is known of a difference
};

/// Finds out how an updater would get from an older release to the one that a channel offers.
///
/// @param from  the older release, as readInstalledRelease() takes it
/// @param error receives the sentence of a failure; an unusable inventory of the offered release is none, as updaters
///              then take the complete package
[[nodiscard]] bool planUpdate(const std::filesystem::path& from, const std::filesystem::path& channel, Console& console,
                              UpdatePlan& plan, std::string& error);

}  // namespace vorthmere::publish
