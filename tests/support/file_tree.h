#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace vorthmere::update::testing {

/// Files by relative path with "/", with their content.
using FileTree = std::map<std::string, std::string>;

/// Reads every file below a folder; links are not entered.
///
/// @param leftOut name of an entry at the top that is not read
[[nodiscard]] FileTree readTree(const std::filesystem::path& folder, const std::string& leftOut = "");

/// Writes every file of a tree below a folder; a path with a "/" at its end is an empty folder.
void writeTree(const std::filesystem::path& folder, const FileTree& tree);

/// Names of what lies directly in a folder.
[[nodiscard]] std::set<std::string> namesIn(const std::filesystem::path& folder);

}  // namespace vorthmere::update::testing
