#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace vorthmere::update::testing {

/// Files by relative path with "/", with their content.
using FileTree = std::map<std::string, std::string>;

/// Reads every file below a folder and skips links.
///
/// @param leftOut name of an entry directly in the folder that is skipped
[[nodiscard]] FileTree readTree(const std::filesystem::path& folder, const std::string& leftOut = "");

/// Writes every file of a tree below a folder; a path that ends in "/" is an empty folder.
void writeTree(const std::filesystem::path& folder, const FileTree& tree);

/// Names of the entries directly in a folder.
[[nodiscard]] std::set<std::string> namesIn(const std::filesystem::path& folder);

}  // namespace vorthmere::update::testing
