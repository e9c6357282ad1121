#pragma once

#include <windows.h>

#include <filesystem>
#include <vector>

namespace vorthmere::update::testing {

/// An absolute path in the form that may have any length, whatever the machine's settings.
[[nodiscard]] std::filesystem::path extendedPath(const std::filesystem::path& path);

/// The entries of a folder except "." and ".."; none when the folder cannot be read. The path may have any length.
[[nodiscard]] std::vector<WIN32_FIND_DATAW> entriesIn(const std::filesystem::path& folder);

}  // namespace vorthmere::update::testing
