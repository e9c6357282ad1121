#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::update {

/// Starts the game without arguments, in the installation folder and with no handle of the updater.
///
/// @param installationFolder absolute, canonical folder of the installation
/// @param error              receives "Unable to relaunch Kelvane (error N)." with the Windows error number
/// @return true when the process was created; it is neither waited for nor watched
[[nodiscard]] bool relaunchGame(const std::filesystem::path& installationFolder, std::wstring& error);

}  // namespace vorthmere::update
