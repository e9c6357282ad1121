#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "publisher/entry_facts.h"

namespace vorthmere::publish {

struct WalkedEntry {
    std::string path;             ///< relative to the walked folder, with "/" between components
    std::filesystem::path place;  ///< the whole path
    EntryFacts facts;
};

/// Visits everything below a folder, each folder before its content. Does not follow links.
///
/// @param visit returns true to enter a folder; for other entries the result does not matter
/// @param error receives one sentence when an entry or a folder cannot be read
[[nodiscard]] bool walkFolder(const std::filesystem::path& folder, const std::function<bool(const WalkedEntry&)>& visit,
                              std::string& error);

}  // namespace vorthmere::publish
