#pragma once

#include <string>
#include <string_view>

namespace vorthmere::publish {

/// Recognises by its name a file or folder that belongs to the making of a game and not to the game.
///
/// @param name its name, without the folders above
/// @return for example "a private key"; empty for everything else
[[nodiscard]] std::string unwantedKind(std::string_view name, bool isFolder);

}  // namespace vorthmere::publish
