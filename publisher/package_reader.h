#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "publisher/release_content.h"
#include "update/file_inventory.h"

namespace vorthmere::publish {

/// Size and digest of a package.
struct PackageFacts {
    std::uint64_t size = 0;  ///< bytes
    std::string sha256;
};

/// Judges a package as the updater would: its listing by the updater's rule, every file in it by size and digest.
///
/// @param entries what the package must hold, no more and no less
/// @param known   paths of entries whose content is known to be right; these are not unpacked
/// @param facts   receives size and digest of the package itself
/// @param done    receives the number of unpacked bytes
/// @param error   receives one sentence about the first difference
[[nodiscard]] bool verifyPackage(const std::filesystem::path& package,
                                 const std::vector<update::InventoryEntry>& entries,
                                 const std::set<std::string, std::less<>>& known, PackageFacts& facts,
                                 const BytesDone& done, std::string& error);

}  // namespace vorthmere::publish
