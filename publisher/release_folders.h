#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::publish {

/// Judges the game folder and the channel as a whole.
///
/// @param error receives one sentence when the game folder is no folder, when the channel is no folder or a link that
///              leads nowhere (a medium that is not mounted), or when one of the two is inside the other
[[nodiscard]] bool judgeFolders(const std::filesystem::path& gameFolder, const std::filesystem::path& channel,
                                std::string& error);

}  // namespace vorthmere::publish
