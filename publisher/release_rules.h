#pragma once

#include <string>
#include <vector>

#include "publisher/release_content.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// Adds the two generated files of a release.
///
/// @return all files, in byte order of the paths
[[nodiscard]] std::vector<ReleaseFile> withGeneratedFiles(std::vector<ReleaseFile> files,
                                                          const update::Manifest& details);

/// Judges the files of a release together, with the generated ones, by the updater's rules.
///
/// @param files with sizes, in byte order of the paths
/// @param error receives one sentence naming the file and the rule, or several, one a line: two paths that are one on
///              Windows, a file that is also a folder, too many files, too many bytes, a missing required file, a list
///              that is too long
[[nodiscard]] bool judgeReleaseFiles(const std::vector<ReleaseFile>& files, std::string& error);

}  // namespace vorthmere::publish
