#include "tests/kit/game.h"

#include <stdexcept>

#include "install/command_line_quoting.h"

namespace vorthmere::kit {
namespace {

namespace fs = std::filesystem;
namespace testing = update::testing;

constexpr char kSaveName[] = "saves/first.sav";
constexpr char kSave[] = "the player's";

testing::FileTree releaseFiles(unsigned release, const testing::FileTree& more) {
    testing::FileTree files = testing::sampleReleaseFiles(release);
    files.insert(more.begin(), more.end());
    const std::string mark = "release " + std::to_string(release);
    // A program also runs with extra bytes at its end.
    files["KVNUpdater.exe"] = testing::readFile(kitFolder() / L"KVNUpdater.exe") + mark;
    files["Vorthmere.exe"] = testing::readFile(kitFolder() / L"kvn_sample_game.exe") + mark;
    if (release == 41) files["data/dropped.pak"] = "only in release 41";
    return testing::withManagedFileList(std::move(files));
}

/// The address of the release channel that the updater beside the kit was built for; nothing is fetched from it.
std::string channelAddress() {
    const std::string text = testing::readFile(kitFolder() / L"channel.txt");
    return text.substr(0, text.find_first_of("\r\n"));
}

std::wstring option(const wchar_t* name, const fs::path& value) {
    return std::wstring(L" ") + name + L" " + update::quoteCommandLineArgument(value.native());
}

}  // namespace

void require(bool condition, const std::string& text) {
    if (!condition) throw std::runtime_error(text);
}

Game::Game(const std::wstring& installationName, const testing::FileTree& more)
    : install(folder_ / installationName),
      old_(releaseFiles(41, {})),
      new_(releaseFiles(42, more)),
      offered_(folder_ / L"local files", new_, 42) {
    testing::writeTree(install, old_);
    testing::writeFile(install / kSaveName, kSave);
    offered_.manifest.url = channelAddress() + "KVN-release-42.zip";
    offered_.writeManifest();
    offered_.writeInventory();
}

Program Game::startUpdater(Way way, const std::wstring& moreArguments) {
    std::wstring arguments = L"--apply --current 41" + option(L"--install", install) +
                             option(L"--manifest-file", offered_.manifestFile) +
                             option(L"--package-file", offered_.packageFile);
    if (way == Way::incremental) {
        arguments += option(L"--inventory-file", offered_.inventoryFile) +
                     option(L"--object-directory", offered_.objectDirectory);
    }
    return Program(install / L"KVNUpdater.exe", arguments + L" " + moreArguments, {}, folder_.path());
}

void Game::update(Way way, DWORD expectedCode, const std::wstring& moreArguments) {
    const DWORD code = startUpdater(way, L"--no-relaunch --test-no-ui " + moreArguments).waitForEnd(kRunLimitMs);
    require(code == expectedCode,
            "the updater ended with " + std::to_string(code) + ", expected was " + std::to_string(expectedCode));
}

void Game::requireRelease(unsigned release) const {
    testing::FileTree present = testing::readTree(install, ".kvn-update");
    require(present[kSaveName] == kSave, "the player's file is not as it was");
    present.erase(kSaveName);
    for (const auto& [path, content] : files(release))
        require(present.contains(path) && present.at(path) == content,
                path + " is not that of release " + std::to_string(release));
    for (const auto& [path, content] : present)
        require(files(release).contains(path), path + " should not be there");
}

}  // namespace vorthmere::kit
