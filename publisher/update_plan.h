#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "publisher/console.h"
#include "publisher/release_difference.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// What an updater would do to get to a release.
struct UpdatePlan {
    update::Manifest target;        ///< the release that the channel offers
    std::uint32_t fromRelease = 0;  ///< 0 when unknown: a folder does not tell
    ReleaseDifference difference;
    bool incremental = false;   ///< the updater fetches the changed files, else the package
    std::string packageReason;  ///< what is wrong with the target's inventory; then `difference` is empty
};

/// Finds out how an updater would get from an older release to the one that a channel offers.
///
/// @param from  the older release, as readInstalledRelease() takes it
/// @param error receives the sentence of a failure. An unusable inventory of the offered release is no failure, because
///              updaters then take the complete package.
[[nodiscard]] bool planUpdate(const std::filesystem::path& from, const std::filesystem::path& channel, Console& console,
                              UpdatePlan& plan, std::string& error);

}  // namespace vorthmere::publish
