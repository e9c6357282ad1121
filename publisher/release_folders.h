#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::publish {

/// Judges the two folders of a release before anything in them is looked at.
///
/// @param error receives one sentence when the game folder is none, when the channel is something else than a folder or
///              a link that leads nowhere (a medium that is not mounted), or when one of them lies inside the other
[[nodiscard]] bool judgeFolders(const std::filesystem::path& gameFolder, const std::filesystem::path& channel,
                                std::string& error);

}  // namespace vorthmere::publish
