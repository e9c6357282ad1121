#pragma once

#include <string>
#include <vector>

#include "publisher/channel_listing.h"

namespace vorthmere::publish {

/// Finds the older releases whose players cannot install a release, because a file in the one is a folder in the other:
/// the updater moves files, not folders. Compares names as Windows does.
///
/// @return one clause for each such release, with both paths and both releases
[[nodiscard]] std::vector<std::string> folderChanges(const std::vector<ListedRelease>& older,
                                                     const ListedRelease& newer);

}  // namespace vorthmere::publish
