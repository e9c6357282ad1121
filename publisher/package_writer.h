#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "publisher/release_content.h"

namespace vorthmere::publish {

/// What a manifest says of a package.
struct PackageFacts {
    std::uint64_t size = 0;  ///< bytes
    std::string sha256;
};

/// Packs a release into a zip archive, in the order of the files and with nothing in it but the files: no folders, no
/// times, fixed attributes; deflated unless the file says that it is not worth it. The same files give the same bytes
/// on every machine with the same libraries.
///
/// @param target  created or replaced; complete and on the disk on success, a part of it may be left on failure
/// @param maxBytes largest package that is allowed
/// @param stop    set to true by another thread to end the work early; the result is then false without a sentence
/// @param facts   size and digest of what was written
/// @param done    told the bytes of content that were packed
/// @param error   receives the sentence of a failure, among them that the package outgrows `maxBytes`
[[nodiscard]] bool writePackage(const std::vector<ReleaseFile>& files, const std::filesystem::path& target,
                                std::uint64_t maxBytes, const std::atomic<bool>& stop, PackageFacts& facts,
                                const BytesDone& done, std::string& error);

}  // namespace vorthmere::publish
