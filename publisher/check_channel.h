#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "publisher/console.h"

namespace vorthmere::publish {

/// What was found out about a channel.
struct ChannelReport {
    std::uint32_t release = 0;  ///< that the channel offers; 0 when that cannot be told

    /// One sentence for each fault, naming the file; empty when every updater can install the release.
    std::vector<std::string> faults;
    std::vector<std::string> notes;  ///< one sentence each on what is worth knowing and no fault
};

/// Reads the release that a channel offers as an updater would, by both ways: every object of its inventory, and the
/// complete package with all that would be unpacked from it.
///
/// @param allowFolderChanges note a file that is a folder in an older release, or the reverse, as no fault
[[nodiscard]] ChannelReport checkChannel(const std::filesystem::path& channel, bool allowFolderChanges,
                                         Console& console);

}  // namespace vorthmere::publish
