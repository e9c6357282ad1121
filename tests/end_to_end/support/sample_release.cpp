#include "tests/end_to_end/support/sample_release.h"

#include <random>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {
namespace {

ReleaseFiles filesThatStay() {
    ReleaseFiles files;
    files["KVNUpdater.exe"] = {readFile(updaterProgram())};
    unsigned seed = 0;
    for (const char* name : {"stone", "wood", "metal", "glass", "water", "sand"})
        files["data/textures/" + std::string(name) + ".pak"] = {noise(20'000, ++seed)};
    for (const char* name : {"ambient 1", "ambient 2", "engine"})
        files["data/sound/" + std::string(name) + ".ogg"] = {noise(8'000, ++seed)};
    files["data/empty.dat"] = {};
    files["data/levels/shared/sky.dat"] = {noise(3'000, ++seed)};
    files["docs/licence.txt"] = {"You may play this game.\n", true};
    files["docs/credits.txt"] = {"Made by two people and a cat.\n"};
    return files;
}

/// The same program with other bytes at its end, which no loader reads.
std::string gameOf(const std::string& release) {
    return readFile(gameProgram()) + "release " + release;
}

/// Files of both releases, with different content in each.
void addChangingFiles(ReleaseFiles& files, const std::string& release) {
    files["Vorthmere.exe"] = {gameOf(release)};
    files["Readme.txt"] = {"Kelvane, release " + release + ".\n"};
    files["config/defaults.ini"] = {"[game]\nrelease=" + release + "\n"};
    files["docs/manual.txt"] = {"How to play release " + release + ".\n", true};
    for (int level = 1; level <= 6; ++level)
        files["data/levels/level 0" + std::to_string(level) + ".lvl"] = {
            "level " + std::to_string(level) + " of release " + release + "\n" + std::string(500, '.')};
}

ReleaseFiles makeRelease41() {
    ReleaseFiles files = filesThatStay();
    addChangingFiles(files, "41");
    files["data/filled later.dat"] = {};
    files["data/emptied later.dat"] = {"not for long\n"};
    files["data/old/legacy.pak"] = {noise(5'000, 4100)};
    files["data/old/deep/legacy notes.txt"] = {"going away\n", true};
    files["Migration.txt"] = {"Only release 41 has this.\n"};
    return withReleaseMetadata(std::move(files), 41);
}

ReleaseFiles makeRelease42() {
    ReleaseFiles files = filesThatStay();
    addChangingFiles(files, "42");
    files["data/filled later.dat"] = {"no longer empty\n"};
    files["data/emptied later.dat"] = {};
    files["data/new area/map.lvl"] = {noise(4'000, 4200)};
    files["data/new area/deep/er/nested.bin"] = {noise(100, 4201)};
    files["What is new.txt"] = {"A new area.\n"};
    return withReleaseMetadata(std::move(files), 42);
}

}  // namespace

std::string noise(std::size_t count, unsigned seed) {
    std::minstd_rand random(seed);
    std::string bytes(count, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random() >> 16);
    return bytes;
}

const ReleaseFiles& sampleRelease41() {
    static const ReleaseFiles files = makeRelease41();
    return files;
}

const ReleaseFiles& sampleRelease42() {
    static const ReleaseFiles files = makeRelease42();
    return files;
}

const ReleaseFiles& playersFiles() {
    static const ReleaseFiles files = {
        {"settings.ini", {"volume=7\n"}},
        {"saves/slot 1.sav", {noise(1'000, 1)}},
        {"saves/slot 2.sav", {noise(1'000, 2), true}},
        {"data/levels/my own level.lvl", {"a player made this\n"}},
        {"data/old/keep me.txt", {"in a folder that goes away\n"}},
        {"data/new area/already here.txt", {"in a folder that comes\n"}},
        {"docs/notes.txt", {}},
        {"screenshots/shot 001.png", {noise(2'000, 3)}},
    };
    return files;
}

}  // namespace vorthmere::end_to_end
