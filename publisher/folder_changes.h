#pragma once

#include <string>
#include <vector>

#include "publisher/channel_listing.h"

namespace vorthmere::publish {

/// Finds the older releases in which a folder is a file of a newer release, or the reverse. The updater moves files, not
/// folders: a folder that becomes a file stops the update, and a file that becomes a folder cannot return when the new
/// game does not start. Compares names as Windows does.
///
/// @return one sentence for each such release, with both paths, both releases and what it means for players
[[nodiscard]] std::vector<std::string> folderChanges(const std::vector<ListedRelease>& older,
                                                     const ListedRelease& newer);

}  // namespace vorthmere::publish
