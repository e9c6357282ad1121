#pragma once

#include <optional>
#include <string>
#include <vector>

#include "publisher/console.h"
#include "publisher/previous_package.h"
#include "publisher/release_content.h"

namespace vorthmere::publish {

/// Computes the digest and CRC-32 of every file and whether deflating it is worth the time, on all processors.
///
/// @param previous an open package, or none; becomes none when it has another digest than it should
[[nodiscard]] bool hashReleaseFiles(std::vector<ReleaseFile>& files, std::optional<PreviousPackage>& previous,
                                    Console& console, std::string& error);

}  // namespace vorthmere::publish
