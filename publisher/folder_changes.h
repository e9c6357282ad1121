#pragma once

#include <string>
#include <vector>

#include "publisher/channel_listing.h"

namespace vorthmere::publish {

/// Finds the older releases whose players cannot install a release, because what is a file in the one is a folder in
/// the other: the updater moves files, and no folders. Names are compared as Windows does.
///
/// @return one clause for each such release, which names both paths and both releases
[[nodiscard]] std::vector<std::string> folderChanges(const std::vector<ListedRelease>& older,
                                                     const ListedRelease& newer);

}  // namespace vorthmere::publish
