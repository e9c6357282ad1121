#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/end_to_end/support/package_writer.h"
#include "tests/end_to_end/support/release_files.h"
#include "tests/end_to_end/support/release_texts.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/end_to_end/support/tree_snapshot.h"

namespace vorthmere::end_to_end {

/// A release as it lies in a channel folder.
struct PublishedRelease {
    std::filesystem::path folder;     ///< holds all of it, the update objects among them
    std::filesystem::path manifest;   ///< KVN-alpha.manifest
    std::filesystem::path package;    ///< KVN-release-<n>.zip
    std::filesystem::path inventory;  ///< the package's name followed by .files
    ManifestText manifestText;        ///< what the manifest says
};

/// Publishes a release with the publishing tool, in place of whatever the channel folder held. A release that was
/// published before in this run of the tests is copied.
///
/// @param files with the metadata that withReleaseMetadata() adds
[[nodiscard]] PublishedRelease publish(const std::filesystem::path& channelFolder, const ReleaseFiles& files,
                                       std::uint32_t release);

/// Publishes a release that the publishing tool would refuse: package, inventory, objects and manifest fit each other,
/// whatever the files are.
[[nodiscard]] PublishedRelease publishByHand(const std::filesystem::path& channelFolder, const ReleaseFiles& files,
                                             std::uint32_t release);

/// The same with whatever file lies at the package's path.
[[nodiscard]] PublishedRelease publishPackage(const std::filesystem::path& channelFolder, const ReleaseFiles& files,
                                              std::uint32_t release);

/// Where publishPackage() expects the package.
[[nodiscard]] std::filesystem::path packagePath(const std::filesystem::path& channelFolder, std::uint32_t release);

struct ScenarioOptions {
    std::string installationName = "Kelvane game";  ///< the installation folder's name; any characters
    std::filesystem::path place = {};  ///< where to make the scenario; empty: the system's temporary folder
    ReleaseFiles installed = sampleRelease41();
    ReleaseFiles offered = sampleRelease42();
};

/// An update with few files: kept, changed, dropped and new ones, in folders that stay, go and come. Neither release
/// holds programs, so the new game cannot be started.
[[nodiscard]] ScenarioOptions smallUpdate();

/// A temporary folder with blanks in its name. It holds an installation of a release 41 with a player's files, files
/// beside the installation that no run may touch, and a channel folder with a release 42. The destructor removes it.
class Scenario {
public:
    explicit Scenario(const ScenarioOptions& options = {});
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;
    ~Scenario();

    std::filesystem::path root;
    std::filesystem::path installation;
    std::filesystem::path workFolder;
    std::filesystem::path gameReport;  ///< where the sample game tells how it was started
    ReleaseFiles installed;            ///< the release 41
    ReleaseFiles offered;              ///< the release 42
    PublishedRelease release;          ///< what the updater is offered

    /// Every path that the updater may change in the installation; whatever else is there is the player's.
    std::set<std::string> managedPaths;

    /// Lays out release 41 again, without a work folder.
    void reset() const;

    /// The player's files in the installation, and everything in the scenario outside of it.
    [[nodiscard]] TreeSnapshot takeProtectedSnapshot() const;

    /// Everything in the installation except the work folder.
    [[nodiscard]] TreeSnapshot takeInstallationSnapshot() const;

    /// How the installation's managed files differ from a release's: one line for each file that is missing, different,
    /// or there although the release does not hold it. Empty when there is no difference.
    [[nodiscard]] std::string differencesFrom(const ReleaseFiles& files) const;
};

}  // namespace vorthmere::end_to_end
