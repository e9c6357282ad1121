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
    std::uint64_t distinct = 0;  ///< all contents of the release, also those that the channel has
    std::uint64_t damaged = 0;   ///< missing ones that are in the channel with wrong content
};

/// Reads every object of a release that the channel has.
///
/// @param files with digests; the result points into it
/// @param error receives a sentence when something that is no file has an object's name
[[nodiscard]] bool findMissingObjects(const std::vector<ReleaseFile>& files, const std::filesystem::path& channel,
                                      Console& console, MissingObjects& missing, std::string& error);

}  // namespace vorthmere::publish
