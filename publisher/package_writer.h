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
    const PreviousPackage* previous = nullptr;  ///< where packed entries may be taken from
};

/// Packs a release into a zip archive, in the order of the files and with nothing in it but the files: no folders, no
/// times, fixed attributes; deflated unless the file says that it is not worth it. When the package would be too large
/// then, every file is deflated. The same files give the same bytes on every machine with the same version of zlib,
/// however many processors it has; entries that are taken from the previous package are as they are there.
///
/// @param stop  set to true by another thread to end the work early; the result is then false without a sentence
/// @param taken receives the paths of the files whose entries were taken from the previous package
/// @param done  told the bytes of content that were packed
/// @param error receives the sentence of a failure, among them that the package outgrows `maxBytes`
[[nodiscard]] bool writePackage(const std::vector<ReleaseFile>& files, const PackageRequest& request,
                                const std::atomic<bool>& stop, PathSet& taken, const BytesDone& done,
                                std::string& error);

}  // namespace vorthmere::publish
