#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::publish {

/// Judges whether players can run a file: whether it is a 64-bit Windows program.
///
/// @param name  for the sentence
/// @param error receives one sentence when it is not, or cannot be read
[[nodiscard]] bool isWindowsProgram(const std::filesystem::path& file, std::string_view name, std::string& error);

/// Judges whether an updater holds the address of the channel that it is published in.
///
/// @param error receives one sentence when it does not, or cannot be read
[[nodiscard]] bool holdsAddress(const std::filesystem::path& updater, std::string_view address, std::string& error);

}  // namespace vorthmere::publish
