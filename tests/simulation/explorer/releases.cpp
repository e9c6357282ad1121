#include "tests/simulation/explorer/releases.h"

#include <algorithm>
#include <set>

#include "tests/simulation/digests.h"
#include "tests/simulation/explorer/tree.h"
#include "tests/support/sample_metadata.h"
#include "update/release_channel.h"

namespace vorthmere::update::simulation {
namespace {

Manifest manifestOf(std::uint32_t release, const std::string& package) {
    Manifest manifest = testing::sampleManifest();
    manifest.release = release;
    manifest.size = package.size();
    manifest.url = channelAddress("KVN-release-" + std::to_string(release) + ".zip");
    manifest.sha256 = sha256TextOf(package);
    return manifest;
}

std::vector<InventoryEntry> entriesOf(const Release& release) {
    std::vector<InventoryEntry> entries;
    for (const ReleaseFile& file : release.files)
        entries.push_back({file.path, sha256TextOf(file.content), file.content.size()});
    return entries;
}

bool isRequired(std::string_view path) {
    return path == kManagedFileListName || path == kUpdaterExecutableName || path == kGameExecutableName;
}

}  // namespace

std::vector<std::string> Release::paths() const {
    std::vector<std::string> paths;
    for (const ReleaseFile& file : files)
        paths.push_back(file.path);
    return paths;
}

Release releaseOf(std::uint32_t number, std::vector<ReleaseFile> files) {
    const std::string mark(kProgramMark);
    const std::string version = std::to_string(number);
    files.push_back({std::string(kReleaseMarkerName), "release=" + version + "\n"});
    std::stable_sort(files.begin(), files.end(),
                     [](const ReleaseFile& left, const ReleaseFile& right) { return left.path < right.path; });
    for (const std::string_view last : {kManagedFileListName, kUpdaterExecutableName, kGameExecutableName}) {
        const auto given =
            std::find_if(files.begin(), files.end(), [last](const ReleaseFile& file) { return file.path == last; });
        ReleaseFile file{std::string(last), mark + std::string(last) + " " + version};
        if (given != files.end()) {
            file = *given;
            files.erase(given);
        }
        files.push_back(std::move(file));
    }
    std::string list;
    for (const ReleaseFile& file : files)
        list += file.path + "\n";
    for (ReleaseFile& file : files)
        if (file.path == kManagedFileListName) file.content = list;
    return {number, std::move(files)};
}

Offer offerOf(const Release& release, const std::vector<ReleaseFile>& unlisted, std::string_view lacking) {
    Offer offer;
    std::vector<PackagedEntry> entries;
    for (const ReleaseFile& file : release.files)
        if (file.path != lacking)
            entries.push_back({.name = file.path, .content = file.content, .isReadOnly = file.isReadOnly});
    for (const ReleaseFile& file : unlisted)
        entries.push_back({.name = file.path, .content = file.content, .isReadOnly = file.isReadOnly});
    offer.package = packageOf(entries);
    const Manifest manifest = manifestOf(release.number, offer.package);
    offer.manifest = testing::joinLines(testing::manifestLines(manifest));
    offer.inventory = testing::joinLines(testing::inventoryLines(manifest, entriesOf(release)));
    std::set<std::string> names;
    for (const ReleaseFile& file : release.files) {
        std::string name = objectName(sha256TextOf(file.content));
        if (names.insert(name).second) offer.objects.push_back({std::move(name), file.content});
    }
    return offer;
}

void putFiles(Machine& machine, std::string_view folder, const std::vector<ReleaseFile>& files) {
    for (const ReleaseFile& file : files)
        machine.files.putFile(std::string(folder) + "/" + file.path, contentOf(file.content),
                              attribute::archive | (file.isReadOnly ? attribute::readOnly : 0));
}

void putLocalOffer(Machine& machine, const Offer& offer) {
    const std::string folder = std::string(place::kOffer) + "/";
    machine.files.putFile(folder + "manifest", contentOf(offer.manifest));
    machine.files.putFile(folder + "package.zip", contentOf(offer.package));
    machine.files.putFile(folder + "inventory", contentOf(offer.inventory));
    for (const Offer::Object& object : offer.objects)
        machine.files.putFile(folder + "objects/" + object.name, contentOf(object.content));
}

void putChannel(Machine& machine, const Offer& offer) {
    const auto answer = [&machine](const std::string& address, const std::string& body) -> Answer& {
        Answer& given = machine.internet.answers[address];
        given.body = contentOf(body);
        return given;
    };
    const std::size_t url = offer.manifest.find("url=") + 4;
    const std::string package = offer.manifest.substr(url, offer.manifest.find('\n', url) - url);
    answer(channelAddress(kManifestName), offer.manifest);
    answer(package, offer.package).chunkBytes = kPackageChunkBytes;
    answer(inventoryAddress(package), offer.inventory);
    for (const Offer::Object& object : offer.objects)
        answer(channelAddress(object.name), object.content);
}

ReleasePair smallestReleases() {
    return {.installed = releaseOf(41, {{"data/a.pak", "a of 41"}}),
            .offered = releaseOf(42, {{"data/a.pak", "a of 42"}}),
            .players = {{"saves/slot1.sav", "a player's save"}},
            .emptyFolders = {}};
}

ReleasePair sampleReleases() {
    return {.installed = releaseOf(41,
                                   {
                                       {"Docs/readme.txt", "readme of 41"},
                                       {"data/changed.pak", "changed of 41"},
                                       {"data/dropped.pak", "dropped of 41"},
                                       {"data/kept.pak", "the same in both", true},
                                       {"mods", "a file of 41"},
                                   }),
            .offered = releaseOf(42,
                                 {
                                     {"Docs/ReadMe.txt", "readme of 42"},
                                     {"data/changed.pak", "changed of 42"},
                                     {"data/kept.pak", "the same in both", true},
                                     {"data/levels/north/new.pak", "new of 42"},
                                     {"mods/base.pak", "base of 42"},
                                     {"players.cfg", "defaults of 42"},
                                 }),
            .players =
                {
                    {"data/players.pak", "a player's own"},
                    {"players.cfg", "a player's, where a new one goes"},
                    {"saves/slot1.sav", "a player's save", true},
                },
            .emptyFolders = {"screenshots"}};
}

ReleasePair swappableReleases() {
    return {.installed = releaseOf(41,
                                   {
                                       {"data/changed.pak", "changed of 41"},
                                       {"data/dropped.pak", "dropped of 41"},
                                       {"data/kept.pak", "the same in both", true},
                                       {"old/only.pak", "only of 41"},
                                   }),
            .offered = releaseOf(42,
                                 {
                                     {"data/changed.pak", "changed of 42"},
                                     {"data/kept.pak", "the same in both", true},
                                     {"data/levels/new.pak", "new of 42"},
                                     {"Readme.txt", "readme of 42"},
                                 }),
            .players =
                {
                    {"data/players.pak", "a player's own"},
                    {"saves/slot1.sav", "a player's save", true},
                },
            .emptyFolders = {"screenshots"}};
}

namespace {

/// Draws the files of two releases, one after the other.
class Drawing {
public:
    explicit Drawing(Tape& tape) : tape_(tape) {}

    ReleasePair draw() {
        const std::size_t files = tape_.upTo(7);
        for (std::size_t i = 0; i < files; ++i)
            drawFile();
        for (std::size_t i = tape_.upTo(3); i > 0; --i)
            add(offered_, pathFor(offered_), "added");
        for (const std::string_view program : {kGameExecutableName, kUpdaterExecutableName})
            if (tape_.coin()) {
                const ReleaseFile file{std::string(program), std::string(kProgramMark) + " the same"};
                installed_.push_back(file);
                offered_.push_back(file);
            }
        drawPlayers();
        return {releaseOf(41, std::move(installed_)), releaseOf(42, std::move(offered_)), std::move(players_),
                std::move(emptyFolders_)};
    }

private:
    using Files = std::vector<ReleaseFile>;

    /// True when no file stands at, above or below the path, in any letter case.
    static bool isFree(const Files& files, std::string_view path) {
        const std::string key = treeKeyOf(path);
        return std::none_of(files.begin(), files.end(), [&key](const ReleaseFile& file) {
            const std::string other = treeKeyOf(file.path);
            return isAtOrBelow(key, other) || isAtOrBelow(other, key);
        });
    }

    std::string pathFor(const Files& files) {
        static constexpr std::string_view folders[] = {"", "data/", "Assets/", "data/levels/", "Z/", "a b/c.d/"};
        static constexpr std::string_view names[] = {"a.pak", "B.pak", "KVN", "_x", "Vorthmere.ini", "c"};
        std::string path = std::string(tape_.anyOf(folders)) + std::string(tape_.anyOf(names));
        if (tape_.upTo(15) == 15) path = "long/" + std::string(200, 'l') + "/" + path;
        while (!isFree(files, path))
            path += "1";
        return path;
    }

    void add(Files& files, const std::string& path, const std::string& what) {
        if (!isFree(files, path) || isRequired(path)) return;
        std::string content = what + " " + path;
        if (tape_.upTo(7) == 7) content.clear();
        files.push_back({path, std::move(content), tape_.upTo(3) == 3});
    }

    static std::string inOtherLetters(std::string path) {
        char& last = path.back();
        if (last >= 'a' && last <= 'z')
            last = static_cast<char>(last - 'a' + 'A');
        else if (last >= 'A' && last <= 'Z')
            last = static_cast<char>(last - 'A' + 'a');
        return path;
    }

    void drawFile() {
        add(installed_, pathFor(installed_), "of 41:");
        if (installed_.empty()) return;
        const ReleaseFile file = installed_.back();
        switch (tape_.upTo(6)) {
            case 0:
                if (isFree(offered_, file.path)) offered_.push_back(file);
                break;
            case 1:
                add(offered_, file.path, "of 42:");
                break;
            case 2:
                break;
            case 3:
                add(offered_, inOtherLetters(file.path), "of 42:");
                break;
            case 4:
                add(offered_, file.path + "/inside", "of 42:");
                break;
            case 5:
                add(offered_, "moved/" + file.path, "of 42:");
                break;
            default:
                if (isFree(offered_, file.path)) offered_.push_back({file.path, file.content, !file.isReadOnly});
                break;
        }
    }

    void drawPlayers() {
        for (std::size_t i = tape_.upTo(3); i > 0; --i) {
            std::string path = pathFor(installed_);
            if (tape_.coin() && !offered_.empty())
                path = tape_.anyOf(offered_).path + (tape_.upTo(3) == 3 ? "/inside" : "");
            if (isRequired(path) || treeKeyOf(path) == treeKeyOf(kReleaseMarkerName)) continue;
            if (isFree(installed_, path) && isFree(players_, path))
                players_.push_back({path, "a player's " + path, tape_.coin()});
        }
        if (tape_.coin()) emptyFolders_.emplace_back("empty");
    }

    Tape& tape_;
    Files installed_;
    Files offered_;
    Files players_;
    std::vector<std::string> emptyFolders_;
};

}  // namespace

ReleasePair drawnReleases(Tape& tape) {
    return Drawing(tape).draw();
}

}  // namespace vorthmere::update::simulation
