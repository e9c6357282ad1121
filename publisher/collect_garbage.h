#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "publisher/console.h"

namespace vorthmere::publish {

struct GarbageRequest {
    std::filesystem::path channel;

    /// How many releases stay, the published one and the newest before it; without a number all that have a package or
    /// an inventory, those included that were begun and never published.
    std::optional<std::uint32_t> keep;
    bool isDryRun = false;  ///< only tell
};

struct GarbageSummary {
    std::vector<std::uint32_t> keptReleases;
    std::vector<std::uint32_t> removedReleases;
    std::vector<std::string> removedFiles;  ///< names, in the order of removal
    std::uint64_t removedBytes = 0;
};

/// Removes from a channel what no kept release needs. Packages go first, then inventories, and when these are off the
/// disk the objects that no inventory names any more; so a run that ends early leaves nothing that lacks an object, and
/// the next one completes it.
///
/// @param error receives one sentence, also when an inventory that stays cannot be read: what it needs is not known then
[[nodiscard]] bool collectGarbage(const GarbageRequest& request, Console& console, GarbageSummary& summary,
                                  std::string& error);

}  // namespace vorthmere::publish
