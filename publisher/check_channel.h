#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publisher/console.h"

namespace vorthmere::publish {

/// Reads the release that a channel offers as an updater would, by both ways: every object of its inventory, and the
/// complete package with all that would be unpacked from it.
///
/// @return one sentence for each fault, naming the file; empty when every updater can install the release
[[nodiscard]] std::vector<std::string> checkChannel(const std::filesystem::path& channel, Console& console);

}  // namespace vorthmere::publish
