#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "publisher/entry_facts.h"

namespace vorthmere::publish {

struct WalkedEntry {
    std::string path;             ///< relative to the folder that is walked, with "/" between components
    std::filesystem::path place;  ///< where it lies
    EntryFacts facts;
};

/// Visits everything below a folder, a folder before what is in it, and never what lies behind a link.
///
/// @param visit returns true for a folder that is to be entered; of other entries the result does not matter
/// @param error receives one sentence when an entry or the list of a folder cannot be read
[[nodiscard]] bool walkFolder(const std::filesystem::path& folder, const std::function<bool(const WalkedEntry&)>& visit,
                              std::string& error);

}  // namespace vorthmere::publish
