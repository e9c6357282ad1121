#include "tests/end_to_end/support/scenario.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "tests/end_to_end/support/digest.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher.h"
#include "tests/support/temporary_folder.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

fs::path makeTemporaryFolder(const fs::path& place) {
    std::string name = ((place.empty() ? fs::temp_directory_path() : place) / "kvn end to end XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::system_error(errno, std::generic_category(), name);
    return name;
}

PublishedRelease aroundPackage(const fs::path& channelFolder, std::uint32_t release) {
    PublishedRelease published;
    published.folder = channelFolder;
    published.package = packagePath(channelFolder, release);
    published.inventory = published.package.string() + std::string(update::kInventorySuffix);
    published.manifest = channelFolder / update::kManifestName;
    published.manifestText = manifestOf(readFile(published.package), release);
    return published;
}

void runPublisherFor(const fs::path& channelFolder, const ReleaseFiles& files, std::uint32_t release) {
    const update::testing::TemporaryFolder game;
    ReleaseFiles ownFiles = files;
    ownFiles.erase(std::string(update::kReleaseMarkerName));
    ownFiles.erase(std::string(update::kManagedFileListName));
    layOut(ownFiles, game.path());
    const ToolEnd end = runPublisher(buildArguments(release, game.path(), channelFolder));
    if (end.exitCode != 0) throw std::runtime_error("kvn-release: " + end.output);

    const PublishedRelease published = aroundPackage(channelFolder, release);
    if (readFile(published.manifest) != renderManifest(published.manifestText) ||
        readFile(published.inventory) != renderInventory(published.manifestText, files))
        throw std::runtime_error("kvn-release has published other files than it was given");
}

/// Differs when the tool that publishes, the release's number or a file of it does.
std::string publicationName(const ReleaseFiles& files, std::uint32_t release) {
    std::ostringstream text;
    text << publisherIsForWindows() << fs::last_write_time(publisherProgram()).time_since_epoch().count() << ' '
         << release;
    for (const auto& [path, file] : files)
        text << '\n' << path << '\n' << file.content.size() << '\n' << file.content;
    return sha256TextOf(text.str());
}

/// A channel folder with this release, which nobody may change. Most tests publish one of two releases, and publishing
/// takes longer than copying. So each release is published once, and kept until the tests run again.
fs::path publishedOnce(const ReleaseFiles& files, std::uint32_t release) {
    fs::path published = fs::path(KVN_PUBLISHED_RELEASES) / publicationName(files, release);
    if (exists(published)) return published;
    fs::create_directories(published.parent_path());
    const fs::path work = makeTemporaryFolder(published.parent_path());
    runPublisherFor(work / "channel", files, release);
    std::error_code otherTestWasFaster;
    fs::rename(work / "channel", published, otherTestWasFaster);
    fs::remove_all(work);
    return published;
}

ReleaseFiles filesOfBoth(const std::string& release) {
    return {{"KVNUpdater.exe", {"the updater of release " + release}},
            {"data/kept.pak", {"the same in both"}},
            {"docs/manual.txt", {"How to play release " + release + ".\n"}}};
}

ReleaseFiles smallRelease41() {
    ReleaseFiles files = filesOfBoth("41");
    files["Vorthmere.exe"] = {"the old game"};
    files["data/old/dropped.pak"] = {"only in the old release"};
    return withReleaseMetadata(std::move(files), 41);
}

ReleaseFiles smallRelease42() {
    ReleaseFiles files = filesOfBoth("42");
    files["Vorthmere.exe"] = {"no program"};
    files["data/new/added.pak"] = {"only in the new release"};
    return withReleaseMetadata(std::move(files), 42);
}

}  // namespace

fs::path packagePath(const fs::path& channelFolder, std::uint32_t release) {
    return channelFolder / ("KVN-release-" + std::to_string(release) + std::string(update::kPackageNameSuffix));
}

PublishedRelease publishPackage(const fs::path& channelFolder, const ReleaseFiles& files, std::uint32_t release) {
    PublishedRelease published = aroundPackage(channelFolder, release);
    for (const auto& [path, file] : files)
        writeFile(channelFolder / objectName(file.content), file.content);
    writeFile(published.inventory, renderInventory(published.manifestText, files));
    writeFile(published.manifest, renderManifest(published.manifestText));
    return published;
}

PublishedRelease publish(const fs::path& channelFolder, const ReleaseFiles& files, std::uint32_t release) {
    fs::remove_all(channelFolder);
    fs::create_directories(channelFolder.parent_path());
    fs::copy(publishedOnce(files, release), channelFolder, fs::copy_options::recursive);
    return aroundPackage(channelFolder, release);
}

PublishedRelease publishByHand(const fs::path& channelFolder, const ReleaseFiles& files, std::uint32_t release) {
    writePackage(packagePath(channelFolder, release), packageEntries(files));
    return publishPackage(channelFolder, files, release);
}

ScenarioOptions smallUpdate() {
    return {.installed = smallRelease41(), .offered = smallRelease42()};
}

Scenario::Scenario(const ScenarioOptions& options)
    : root(makeTemporaryFolder(options.place)),
      installation(root / "games" / options.installationName),
      workFolder(installation / update::kWorkFolderName),
      gameReport(root / "game report.txt"),
      installed(options.installed),
      offered(options.offered) {
    layOut(installed, installation);
    layOut(playersFiles(), installation);
    fs::create_directories(installation / "mods");
    writeFile(root / "beside.txt", "not the game's");
    writeFile(root / "games" / "other game" / "Vorthmere.exe", "another installation");
    release = publish(root / "channel", offered, 42);
    for (const ReleaseFiles* files : {&installed, &offered})
        for (const auto& [path, file] : *files)
            managedPaths.insert(path);
}

Scenario::~Scenario() {
    std::error_code ignored;
    if (!std::getenv("KVN_KEEP_SCENARIOS")) fs::remove_all(root, ignored);
}

void Scenario::reset() const {
    fs::remove_all(workFolder);
    for (const std::string& path : managedPaths)
        fs::remove_all(installation / path);
    layOut(installed, installation);
}

TreeSnapshot Scenario::takeProtectedSnapshot() const {
    const std::string inside = installation.lexically_relative(root).generic_string() + "/";
    // Folders that hold managed files come and go with them.
    std::set<std::string> managed;
    for (const fs::path path : managedPaths)
        for (fs::path part = path; !part.empty(); part = part.parent_path())
            managed.insert(inside + part.generic_string());

    const std::set<std::string> unprotected = {inside + std::string(update::kWorkFolderName),
                                               gameReport.filename().string(), gameReport.filename().string() + ".new"};
    TreeSnapshot snapshot =
        takeSnapshot(root, [&unprotected](const std::string& path) { return !unprotected.contains(path); });
    std::erase_if(snapshot, [&managed](const auto& entry) { return managed.contains(entry.first); });
    return snapshot;
}

TreeSnapshot Scenario::takeInstallationSnapshot() const {
    return takeSnapshot(installation, [](const std::string& path) { return path != update::kWorkFolderName; });
}

std::string Scenario::differencesFrom(const ReleaseFiles& files) const {
    std::string lines;
    for (const auto& [path, file] : files) {
        if (!fs::is_regular_file(fs::symlink_status(installation / path)))
            lines += "  missing: " + path + "\n";
        else if (readFile(installation / path) != file.content)
            lines += "  different: " + path + "\n";
    }
    for (const std::string& path : managedPaths)
        if (!files.contains(path) && fs::exists(fs::symlink_status(installation / path)))
            lines += "  left over: " + path + "\n";
    return lines;
}

}  // namespace vorthmere::end_to_end
