#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "publisher/console.h"
#include "publisher/release_content.h"

namespace vorthmere::publish {

/// The objects that a channel lacks for a release.
struct MissingObjects {
    std::vector<const ReleaseFile*> files;  ///< one for each content, in the order of the release
    std::uint64_t bytes = 0;
    std::uint64_t distinct = 0;  ///< contents of the release, those included that the channel has
    std::uint64_t damaged = 0;   ///< of the missing ones, those in whose place something wrong stands
};

/// Reads every object of a release that the channel has.
///
/// @param files with digests; the result points into it
/// @param error receives a sentence when something that is no file stands in an object's place
[[nodiscard]] bool findMissingObjects(const std::vector<ReleaseFile>& files, const std::filesystem::path& channel,
                                      Console& console, MissingObjects& missing, std::string& error);

}  // namespace vorthmere::publish
