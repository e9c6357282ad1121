#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publisher/release_content.h"
#include "update/file_inventory.h"

namespace vorthmere::publish {

/// Judges a package as the updater would: its listing by the updater's own rule, and every file that would be unpacked
/// by size and digest.
///
/// @param entries what the package has to hold, no more and no less
/// @param done    told the bytes of content that were unpacked
/// @param error   receives one sentence naming the first difference found
[[nodiscard]] bool verifyPackage(const std::filesystem::path& package,
                                 const std::vector<update::InventoryEntry>& entries, const BytesDone& done,
                                 std::string& error);

}  // namespace vorthmere::publish
