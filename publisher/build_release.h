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
    update::Manifest details;          ///< release, version, protocol, mandatory and notes; the rest is found out
    std::filesystem::path gameFolder;  ///< the game's files; only read
    std::filesystem::path channel;     ///< what the server serves as the download base URL; created when missing
    GameFolderPatterns patterns;       ///< what is left out of the game folder
    bool isDryRun = false;             ///< judge everything that can be judged without writing, and write nothing
    bool allowAnyPrograms = false;     ///< let programs pass that no player could run or that ask another channel
    bool allowJump = false;            ///< let a number pass that leaves out more than a million
    bool allowFolderChanges = false;   ///< let a file pass that is a folder in an older release, or the reverse
};

/// What was published, or in a dry run what would be.
struct ReleaseSummary {
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;            ///< sum of the sizes of the files
    std::uint64_t distinctObjects = 0;  ///< contents, each stored once
    std::uint64_t newObjects = 0;       ///< of these, written now
    std::uint64_t mendedObjects = 0;    ///< of the new ones, those that stood in the channel with wrong content
    bool mendedPackage = false;         ///< another package stood in its place
    bool mendedInventory = false;       ///< another inventory stood in its place
    std::uint64_t newObjectBytes = 0;
    std::uint64_t packageBytes = 0;                ///< 0 in a dry run, as it is not packed
    std::optional<std::uint32_t> previousRelease;  ///< none when the channel holds no older release
    std::string previousFault;                     ///< one sentence on why the next two are not known; else empty
    std::uint64_t bytesFromPrevious = 0;           ///< what an updater fetches coming from the previous release; in a
                                                   ///< dry run as changed files
    bool incrementalFromPrevious = false;          ///< as changed files, not as the complete package
    std::vector<std::string> notes;                ///< one sentence each on what a publisher should know
};

/// Publishes a release.
///
/// Everything is judged before anything is written, and everything is written into a work folder inside the channel
/// before anything is put in its place: objects first, then the package and its inventory, and the manifest last, by
/// one rename. A run that ends early, at whatever point, leaves the previous release published; the next run removes
/// what it left and completes. Files of older releases are kept.
///
/// @param error receives one sentence naming the file or option and the rule, or several, one a line
/// @return true when the release is published. A release that is published already, with the same content, is
///         completed and true.
[[nodiscard]] bool buildRelease(const ReleaseRequest& request, Console& console, ReleaseSummary& summary,
                                std::string& error);

}  // namespace vorthmere::publish
