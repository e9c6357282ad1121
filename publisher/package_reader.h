#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "publisher/release_content.h"
#include "update/file_inventory.h"

namespace vorthmere::publish {

/// What a manifest says of a package.
struct PackageFacts {
    std::uint64_t size = 0;  ///< bytes
    std::string sha256;
};

/// Judges a package as the updater would: its listing by the updater's own rule, and every file that would be unpacked
/// by size and digest.
///
/// @param entries what the package has to hold, no more and no less
/// @param known   paths of entries whose content is known to be right; they are not unpacked
/// @param facts   receives size and digest of the package itself
/// @param done    told the bytes of content that were unpacked
/// @param error   receives one sentence naming the first difference found
[[nodiscard]] bool verifyPackage(const std::filesystem::path& package,
                                 const std::vector<update::InventoryEntry>& entries,
                                 const std::set<std::string, std::less<>>& known, PackageFacts& facts,
                                 const BytesDone& done, std::string& error);

}  // namespace vorthmere::publish
