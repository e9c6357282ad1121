#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::update {

/// Starts the game in the installation folder, without arguments and without handles of the updater.
///
/// @param installationFolder absolute, canonical folder of the installation
/// @param error              receives the sentence of a failure
/// @return true when the process was created; its end is not waited for. False with "Unable to relaunch Kelvane (error
///         N).", N being the Windows error.
[[nodiscard]] bool relaunchGame(const std::filesystem::path& installationFolder, std::wstring& error);

}  // namespace vorthmere::update
