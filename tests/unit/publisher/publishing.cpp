#include "tests/unit/publisher/publishing.h"

#include <random>
#include <sstream>
#include <stdexcept>

#include "publisher/release_hashing.h"
#include "publisher/release_texts.h"
#include "publisher/sha256.h"
#include "update/release_channel.h"

namespace vorthmere::publish::testing {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t kMostBytesRead = 1 << 20;

}  // namespace

Tree readTree(const fs::path& folder) {
    Tree tree;
    if (!fs::exists(folder)) return tree;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        std::string& content = tree[entry.path().lexically_relative(folder).generic_string()];
        if (entry.is_symlink())
            content = "link to " + fs::read_symlink(entry.path()).string();
        else if (entry.is_regular_file() && entry.file_size() > kMostBytesRead)
            content = "large file";
        else if (entry.is_regular_file())
            content = update::testing::readFile(entry.path());
        else
            content = entry.is_directory() ? "folder" : "special file";
    }
    return tree;
}

std::string packedContent(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::string content(size, '\0');
    for (char& byte : content)
        byte = static_cast<char>(random());
    return content;
}

std::string windowsProgram(std::string_view text) {
    constexpr std::size_t kHeaderAt = 64;
    std::string program = "MZ";
    program.resize(kHeaderAt);
    program[0x3C] = kHeaderAt;
    // Signature, machine x64, an optional header for 64 bits, the flags of a program.
    program.append("PE\0\0\x64\x86", 6).append(16, '\0').append("\x22\0\x0B\x02", 4);
    return program.append(100, '\0').append(text).append(100, '\0');
}

bool hashFiles(std::vector<ReleaseFile>& files, std::string& error) {
    std::ostringstream output;
    Console console(output, false);
    std::optional<PreviousPackage> none;
    return hashReleaseFiles(files, none, console, error);
}

PublishingTest::PublishingTest() {
    putFile("Vorthmere.exe", "the game");
    putFile("KVNUpdater.exe", "the updater");
    putFile("data/level one.pak", "level one");
    putFile("data/sound/theme.ogg", packedContent(3000));
    putFile("data/sound/copy of theme.ogg", packedContent(3000));
    putFile("data/nothing.txt", "");
}

void PublishingTest::putFile(const std::string& path, std::string_view content) const {
    update::testing::writeFile(game / path, content);
}

void PublishingTest::removeFile(const std::string& path) const {
    if (!fs::remove(game / path)) throw std::runtime_error(path + " is not there");
}

ReleaseRequest PublishingTest::request(std::uint32_t release) const {
    ReleaseRequest wanted;
    wanted.details.release = release;
    wanted.details.version = "0.9.3 alpha";
    wanted.details.protocol = 7;
    wanted.details.notes = "Balance changes and fixes.";
    wanted.gameFolder = game;
    wanted.channel = channel;
    wanted.allowAnyPrograms = true;
    return wanted;
}

ReleaseSummary PublishingTest::publish(std::uint32_t release) {
    std::ostringstream output;
    Console console(output, false);
    ReleaseSummary summary;
    std::string error;
    EXPECT_TRUE(buildRelease(request(release), console, summary, error)) << error;
    return summary;
}

std::string PublishingTest::refusalOf(const ReleaseRequest& wanted) {
    std::ostringstream output;
    Console console(output, false);
    ReleaseSummary summary;
    std::string error;
    const bool published = buildRelease(wanted, console, summary, error);
    EXPECT_EQ(published, error.empty()) << error;
    return error;
}

update::Manifest PublishingTest::manifest() const {
    update::Manifest parsed;
    std::string error;
    if (!update::parseManifest(update::testing::readFile(channel / update::kManifestName), parsed, error))
        throw std::runtime_error(error);
    return parsed;
}

std::vector<update::InventoryEntry> PublishingTest::inventory() const {
    const update::Manifest offered = manifest();
    const std::string text = update::testing::readFile(channel / (packageNameOf(offered) + ".files"));
    std::vector<update::InventoryEntry> entries;
    std::string error;
    if (!update::parseFileInventory(text, offered, entries, error)) throw std::runtime_error(error);
    return entries;
}

fs::path PublishingTest::objectOf(const std::string& path) const {
    return channel / objectName(sha256Of(update::testing::readFile(game / path)));
}

}  // namespace vorthmere::publish::testing
