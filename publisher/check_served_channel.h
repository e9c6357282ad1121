#pragma once

#include <filesystem>
#include <string>

#include "publisher/check_channel.h"
#include "publisher/console.h"

namespace vorthmere::publish {

/// Fetches the release that a server offers as updaters would, each file with the updater's own limit, and checks it
/// like a channel folder. Also reports redirects and every other answer but 200, a manifest that may be cached, content
/// that the server packs, and an answer other than 404 for a file that does not exist.
///
/// @param address of the channel, ending in "/"
/// @param caFile  certificates to trust instead of the system's; empty for the system's
/// @param allowFolderChanges as in checkChannel()
///
/// A server does not tell which releases it has. So the check asks for the inventories of the 16 numbers below the
/// offered one and compares files and folders with those that it gets. A note tells which.
///
/// The fetched files stay in the system's folder for temporary files until the end, so there must be room for the
/// package and all objects.
[[nodiscard]] ChannelReport checkServedChannel(const std::string& address, const std::filesystem::path& caFile,
                                               bool allowFolderChanges, Console& console);

}  // namespace vorthmere::publish
