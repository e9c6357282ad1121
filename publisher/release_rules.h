#pragma once

#include <string>
#include <vector>

#include "publisher/release_content.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// Adds the two files that every release has of its own.
///
/// @return all files, in byte order of the paths
[[nodiscard]] std::vector<ReleaseFile> withGeneratedFiles(std::vector<ReleaseFile> files,
                                                          const update::Manifest& details);

/// Judges all files of a release together, the generated ones included, by what the updater accepts.
///
/// @param files with sizes, in byte order of the paths
/// @param error receives one sentence naming the file and the rule, or several, one a line: two paths that are one on
///              Windows, a file that is also a folder, too many files, too many bytes, a missing required file, a list
///              that is too long
[[nodiscard]] bool judgeReleaseFiles(const std::vector<ReleaseFile>& files, std::string& error);

}  // namespace vorthmere::publish
