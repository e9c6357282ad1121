#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/end_to_end/support/release_files.h"

namespace vorthmere::end_to_end {

/// The values of a release manifest as text, so that wrong ones can be written too.
struct ManifestText {
    std::string release = "42";
    std::string version = "0.9.3 alpha";
    std::string protocol = "1";
    std::string mandatory = "0";
    std::string size;
    std::string sha256;
    std::string url;
    std::string notes = "Balance changes and fixes.";
};

/// The manifest of a package: its size, digest and address, all else as in the sample release.
[[nodiscard]] ManifestText manifestOf(const std::string& packageBytes, std::uint32_t release);

[[nodiscard]] std::string renderManifest(const ManifestText& manifest);
[[nodiscard]] std::string renderInventory(const ManifestText& manifest, const ReleaseFiles& files);

/// The files without which a folder is no installation come last.
[[nodiscard]] std::string renderManagedFileList(const ReleaseFiles& files);

/// The paths in the order of that list.
[[nodiscard]] std::vector<std::string> managedFileOrder(const ReleaseFiles& files);

/// The name of the update object with this content.
[[nodiscard]] std::string objectName(const std::string& content);

[[nodiscard]] std::string renderReleaseMarker(const ManifestText& manifest);

}  // namespace vorthmere::end_to_end
