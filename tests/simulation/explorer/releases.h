#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/archive_tool.h"
#include "tests/simulation/explorer/tape.h"
#include "tests/simulation/machine.h"

namespace vorthmere::update::simulation {

/// One file of a release, or of a player.
struct ReleaseFile {
    std::string path;  ///< relative, "/" separated
    std::string content;
    bool isReadOnly = false;
};

/// A release: its files in the order of its managed-file list, the generated ones among them.
struct Release {
    std::uint32_t number = 0;
    std::vector<ReleaseFile> files;

    [[nodiscard]] std::vector<std::string> paths() const;
};

/// Makes a release of the game's own files: adds the release marker and the list, which names itself, the updater and
/// the game last.
[[nodiscard]] Release releaseOf(std::uint32_t number, std::vector<ReleaseFile> files);

/// What a channel offers: one release in all its forms.
struct Offer {
    std::string manifest;
    std::string inventory;
    std::string package;
    struct Object {
        std::string name;
        std::string content;
    };
    std::vector<Object> objects;
};

/// @param unlisted files that the package holds besides, and no list names
/// @param lacking  path of a file that the package does not hold, though the list names it
[[nodiscard]] Offer offerOf(const Release& release, const std::vector<ReleaseFile>& unlisted = {},
                            std::string_view lacking = {});

/// The folders of every scenario.
namespace place {
inline constexpr std::string_view kInstallation = "C:/Games/Kelvane";
inline constexpr std::string_view kWorkFolder = "C:/Games/Kelvane/.kvn-update";
inline constexpr std::string_view kStaging = "C:/Games/Kelvane/.kvn-update/staging";
inline constexpr std::string_view kBackup = "C:/Games/Kelvane/.kvn-update/backup";
inline constexpr std::string_view kOffer = "C:/Offer";
inline constexpr std::string_view kElsewhere = "C:/Elsewhere";  ///< where junctions lead
}  // namespace place

/// Puts files below a folder.
void putFiles(Machine& machine, std::string_view folder, const std::vector<ReleaseFile>& files);

/// Lays an offer out as local files in place::kOffer: "manifest", "package.zip", "inventory", "objects/".
void putLocalOffer(Machine& machine, const Offer& offer);

/// The most that the channel gives of a package at once: a small one takes several reads, too.
inline constexpr std::size_t kPackageChunkBytes = 512;

/// Lets the release channel answer with an offer.
void putChannel(Machine& machine, const Offer& offer);

/// What is installed, what is offered, and what else a player has in the game's folder.
struct ReleasePair {
    Release installed;
    Release offered;
    std::vector<ReleaseFile> players;
    std::vector<std::string> emptyFolders;  ///< relative
};

/// A small game whose next release changes, adds, drops and keeps a file, puts one into a new folder within a new
/// folder, writes one in other letters and turns a file into a folder; a player has files beside them and where a new
/// one goes.
[[nodiscard]] ReleasePair sampleReleases();

/// The same without what cannot be swapped back when the new game does not start: a file that becomes a folder, a name
/// in other letters, a player's file where a new one goes.
[[nodiscard]] ReleasePair swappableReleases();

/// The fewest files with which every step of an update happens.
[[nodiscard]] ReleasePair smallestReleases();

/// Any game and any next release of it that can be installed.
[[nodiscard]] ReleasePair drawnReleases(Tape& tape);

}  // namespace vorthmere::update::simulation
