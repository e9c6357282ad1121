#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publisher/console.h"
#include "publisher/previous_package.h"
#include "publisher/release_content.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// A complete and verified release in the channel's work folder.
struct StagedRelease {
    update::Manifest manifest;
    std::string inventory;  ///< text of the file inventory
};

/// Writes a release into an empty work folder: the objects, the package, its inventory and the manifest, each under its
/// name in the channel. Then reads inventory and manifest back with the updater's own parsers, unpacks the package and
/// compares it. Entries that come from the previous package were compared when that was published.
///
/// @param files      all files of the release, with digests, in byte order of the paths
/// @param newObjects one of `files` for each content that the channel lacks
/// @param details    release, version, protocol, mandatory and notes
/// @param previous   the source of entries that are packed already, or null
/// @param error      receives the sentence of a failure; then the work folder may hold a part of the release
[[nodiscard]] bool stageRelease(const std::vector<ReleaseFile>& files,
                                const std::vector<const ReleaseFile*>& newObjects, const update::Manifest& details,
                                const PreviousPackage* previous, const std::filesystem::path& workFolder,
                                Console& console, StagedRelease& staged, std::string& error);

}  // namespace vorthmere::publish
