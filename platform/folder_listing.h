#pragma once

#include <filesystem>
#include <functional>
#include <system_error>
#include <vector>

namespace vorthmere::update {

/// One entry of a folder, as the folder describes it: a link is described itself, not what it leads to.
struct FolderEntry {
    std::filesystem::path path;  ///< the folder's path joined with the entry's name
    bool isFolder = false;
    bool isReparsePoint = false;
};

/// All entries of one folder but "." and "..".
///
/// @param failure cleared, or set when the folder cannot be read to its end; the entries read until then are returned
[[nodiscard]] std::vector<FolderEntry> listFolder(const std::filesystem::path& folder, std::error_code& failure);

/// Visits every entry below a folder, each folder before its content, without entering reparse points.
///
/// @param visit   called with each entry's path; returns false to stop the walk
/// @param failure cleared, or set when a folder cannot be read
/// @return true when every entry was visited; false when the walk was stopped or failed
bool walkTree(const std::filesystem::path& folder, const std::function<bool(const std::filesystem::path&)>& visit,
              std::error_code& failure);

}  // namespace vorthmere::update
