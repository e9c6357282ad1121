#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "publisher/console.h"
#include "publisher/game_folder.h"
#include "update/manifest.h"

namespace vorthmere::publish {

/// What is to be published, and where.
struct ReleaseRequest {
    update::Manifest details;          ///< release, version, protocol, mandatory, notes; the rest is ignored
    std::filesystem::path gameFolder;  ///< the game's files; only read
    std::filesystem::path channel;     ///< the folder that the server serves; created when missing
    GameFolderPatterns patterns;       ///< what is left out of the game folder
    bool isDryRun = false;             ///< judge everything that can be judged without writing, and write nothing
    bool allowAnyPrograms = false;     ///< accept programs that no player could run or that ask another channel
    bool allowJump = false;            ///< accept a number that leaves out more than a million
    bool allowFolderChanges = false;   ///< accept a file that is a folder in an older release, or the reverse
};

/// What was published, or in a dry run what would be.
struct ReleaseSummary {
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;            ///< sum of the sizes of the files
    std::uint64_t distinctObjects = 0;  ///< contents, each stored once
    std::uint64_t newObjects = 0;       ///< of these, written now
    std::uint64_t mendedObjects = 0;    ///< new ones that replaced an object with wrong content
    bool mendedPackage = false;         ///< the package replaced another one
    bool mendedInventory = false;       ///< the inventory replaced another one
    std::uint64_t newObjectBytes = 0;
    std::uint64_t packageBytes = 0;                ///< 0 in a dry run, as it is not packed
    std::optional<std::uint32_t> previousRelease;  ///< none when the channel holds no older release
    std::string previousFault;                     ///< one sentence on why the next two are unknown; else empty
    std::uint64_t bytesFromPrevious = 0;           ///< what an updater fetches from the previous release on; in a
                                                   ///< dry run always as changed files
    bool incrementalFromPrevious = false;          ///< as changed files, not as the complete package
    std::vector<std::string> notes;                ///< sentences about what a publisher should know
};

/// Publishes a release.
///
/// The build judges everything before it writes anything, and writes everything into a work folder inside the channel
/// before it moves anything into place: objects first, then the package and its inventory, and the manifest last, by
/// one rename. A run that ends early, at whatever point, leaves the previous release published. The next run removes
/// the leftovers and completes the release. Files of older releases stay.
///
/// @param error receives one sentence naming the file or option and the rule, or several, one a line
/// @return true when the release is published. When it was published before with the same content, the build completes
///         it and returns true.
[[nodiscard]] bool buildRelease(const ReleaseRequest& request, Console& console, ReleaseSummary& summary,
                                std::string& error);

}  // namespace vorthmere::publish
