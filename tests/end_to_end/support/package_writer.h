#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/end_to_end/support/release_files.h"

namespace vorthmere::end_to_end {

/// One entry of an archive. Its name is used exactly as written.
struct PackageEntry {
    enum class Kind { file, folder, symbolicLink, hardLink };

    std::string name;
    std::string content;  ///< a file's bytes, a link's target
    Kind kind = Kind::file;
};

enum class PackageFormat { zip, encryptedZip, tar };

/// A release's files as entries, folders included.
[[nodiscard]] std::vector<PackageEntry> packageEntries(const ReleaseFiles& files);

/// Writes an archive with exactly these entries in this order, whatever they are.
void writePackage(const std::filesystem::path& package, const std::vector<PackageEntry>& entries,
                  PackageFormat format = PackageFormat::zip);

}  // namespace vorthmere::end_to_end
