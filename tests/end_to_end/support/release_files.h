#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace vorthmere::end_to_end {

/// One file of a release.
struct ReleaseFile {
    std::string content;
    bool readOnly = false;  ///< set on the installed file; a release carries no attributes

    friend bool operator==(const ReleaseFile&, const ReleaseFile&) = default;
};

/// The files of a release by managed relative path.
using ReleaseFiles = std::map<std::string, ReleaseFile>;

/// Adds what every release must hold besides the game's own files: the release marker and the managed-file list.
[[nodiscard]] ReleaseFiles withReleaseMetadata(ReleaseFiles files, std::uint32_t release);

/// Writes the files into a folder.
void layOut(const ReleaseFiles& files, const std::filesystem::path& folder);

}  // namespace vorthmere::end_to_end
