#pragma once

#include <string>
#include <string_view>

namespace vorthmere::publish {

/// Says what a file or folder is by its name, if it is something that belongs to making a game and not to the game.
///
/// @param name its name, without the folders above
/// @return such as "a private key"; empty for everything else
[[nodiscard]] std::string unwantedKind(std::string_view name, bool isFolder);

}  // namespace vorthmere::publish
