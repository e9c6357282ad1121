#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "publisher/previous_package.h"
#include "publisher/release_content.h"

namespace vorthmere::publish {

using PathSet = std::set<std::string, std::less<>>;

/// How a package is to be written.
struct PackageRequest {
    std::filesystem::path target;               ///< created or replaced; after a failure a part of it may be left
    std::uint64_t maxBytes = 0;                 ///< largest package that is allowed
    const PreviousPackage* previous = nullptr;  ///< the source of entries that are packed already, or null
};

/// Packs a release into a zip archive, in the order of the files: no folders, no times, fixed attributes. Files that are
/// worth it are deflated, the others stored. When the package would be too large that way, every file is deflated.
/// Entries from the previous package stay as they are there. The same files give the same bytes on every machine with
/// the same version of zlib, however many processors it has.
///
/// @param stop  another thread sets it to end the work early; the result is then false without a sentence
/// @param taken receives the paths of the files whose entries come from the previous package
/// @param done  receives the number of packed bytes of content
/// @param error receives the sentence of a failure, also when the package outgrows `maxBytes`
[[nodiscard]] bool writePackage(const std::vector<ReleaseFile>& files, const PackageRequest& request,
                                const std::atomic<bool>& stop, PathSet& taken, const BytesDone& done,
                                std::string& error);

}  // namespace vorthmere::publish
