#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publisher/console.h"
#include "publisher/previous_package.h"
#include "publisher/release_content.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// A release that lies complete and verified in the channel's work folder.
struct StagedRelease {
    update::Manifest manifest;
    std::string inventory;  ///< text of the file inventory
};

/// Writes a release into an empty work folder: the objects, the package, its inventory and the manifest, each under the
/// name that it will have in the channel. All of it is then read back by the updater's own parsers and the package is
/// unpacked and compared, but for the entries that were taken from the previous package: these were compared when it
/// was published.
///
/// @param files      all files of the release, with digests, in byte order of the paths
/// @param newObjects those of `files` whose content the channel lacks, one for each content
/// @param details    release, version, protocol, mandatory and notes
/// @param previous   where packed entries may be taken from, or null
/// @param error      receives the sentence of a failure; the work folder may then hold anything
[[nodiscard]] bool stageRelease(const std::vector<ReleaseFile>& files,
                                const std::vector<const ReleaseFile*>& newObjects, const update::Manifest& details,
                                const PreviousPackage* previous, const std::filesystem::path& workFolder,
                                Console& console, StagedRelease& staged, std::string& error);

}  // namespace vorthmere::publish
