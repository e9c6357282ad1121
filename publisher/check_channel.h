#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "publisher/console.h"

namespace vorthmere::publish {

/// The result of a check.
struct ChannelReport {
    std::uint32_t release = 0;  ///< the release that the channel offers; 0 when unknown

    /// One sentence for each fault, with the name of the file; empty when every updater can install the release.
    std::vector<std::string> faults;
    std::vector<std::string> notes;  ///< sentences about what is worth knowing but no fault
};

/// Reads the release that a channel offers as an updater would, in both ways: every object of its inventory, and every
/// file in its complete package.
///
/// @param allowFolderChanges report a file that is a folder in an older release, or the reverse, as a note, not a fault
[[nodiscard]] ChannelReport checkChannel(const std::filesystem::path& channel, bool allowFolderChanges,
                                         Console& console);

}  // namespace vorthmere::publish
