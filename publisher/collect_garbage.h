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

    /// How many releases stay: the published one and the newest before it. Without a number every release stays that has
    /// a package or an inventory, even one that was never published.
    std::optional<std::uint32_t> keep;
    bool isDryRun = false;  ///< report only, remove nothing
};

struct GarbageSummary {
    std::vector<std::uint32_t> keptReleases;
    std::vector<std::uint32_t> removedReleases;
    std::vector<std::string> removedFiles;  ///< names, in the order of removal
    std::uint64_t removedBytes = 0;
};

/// Removes from a channel what no kept release needs: packages first, then inventories, and when these are off the disk,
/// the objects that no inventory names any more. So a run that ends early leaves no release that lacks an object, and the
/// next run completes the work.
///
/// @param error receives one sentence, also when an inventory that stays cannot be read: its objects are unknown then
[[nodiscard]] bool collectGarbage(const GarbageRequest& request, Console& console, GarbageSummary& summary,
                                  std::string& error);

}  // namespace vorthmere::publish
