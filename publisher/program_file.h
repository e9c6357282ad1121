#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// Judges whether a file is what players can run: a 64-bit Windows program.
///
/// @param name  for the sentence
/// @param error receives one sentence when it is anything else, or cannot be read
[[nodiscard]] bool isWindowsProgram(const std::filesystem::path& file, std::string_view name, std::string& error);

/// Judges whether an updater asks the channel that it is published in.
///
/// @param error receives one sentence when the program does not hold the address, or cannot be read
[[nodiscard]] bool holdsAddress(const std::filesystem::path& updater, std::string_view address, std::string& error);

}  // namespace vorthmere::publish
