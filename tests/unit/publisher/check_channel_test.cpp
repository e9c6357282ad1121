#include "publisher/check_channel.h"

#include <gmock/gmock.h>

#include <sstream>

#include "publisher/game_folder.h"
#include "publisher/release_staging.h"
#include "publisher/release_texts.h"
#include "tests/unit/publisher/publishing.h"
#include "update/metadata_text.h"
#include "update/release_channel.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using update::testing::readFile;
using update::testing::writeFile;

class CheckChannelTest : public PublishingTest {
protected:
    void SetUp() override {
        publish(41);
        putFile("data/level one.pak", "level one, mended");
        publish(42);
    }

    [[nodiscard]] std::vector<std::string> faults() const {
        std::ostringstream output;
        Console console(output, false);
        const Tree before = readTree(channel);
        std::vector<std::string> found = checkChannel(channel, false, console).faults;
        EXPECT_EQ(readTree(channel), before);
        return found;
    }

    /// Makes a channel from the game folder without the rules of buildRelease().
    [[nodiscard]] fs::path channelOfAnyFiles() const {
        GameFolder found;
        std::string error;
        EXPECT_TRUE(listGameFolder(game, {}, found, error)) << error;
        std::vector<ReleaseFile>& files = found.files;
        const update::Manifest details = request(43).details;
        std::vector<std::string> paths{std::string(update::kManagedFileListName),
                                       std::string(update::kReleaseMarkerName)};
        for (const ReleaseFile& file : files)
            paths.push_back(file.entry.path);
        for (const auto& [name, text] : {std::pair{update::kManagedFileListName, update::managedFileListText(paths)},
                                         std::pair{update::kReleaseMarkerName, releaseMarkerText(details)}})
            files.push_back({{std::string(name), {}, text.size()}, {}, text});
        EXPECT_TRUE(hashFiles(files, error)) << error;

        std::vector<const ReleaseFile*> objects;
        for (const ReleaseFile& file : files)
            objects.push_back(&file);
        fs::path other = folder / "other channel";
        fs::create_directory(other);
        std::ostringstream output;
        Console console(output, false);
        StagedRelease staged;
        EXPECT_TRUE(stageRelease(files, objects, details, nullptr, other, console, staged, error)) << error;
        return other;
    }

    void flipLastByte(const fs::path& file) const {
        std::string content = readFile(file);
        content.back() = static_cast<char>(content.back() ^ 1);
        writeFile(file, content);
    }

    const fs::path package = channel / "KVN-release-42.zip";
    const fs::path list = channel / "KVN-release-42.zip.files";
};

TEST_F(CheckChannelTest, SoundChannelHasNoFaults) {
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(CheckChannelTest, FilesOfFormerReleasesAreNotNeeded) {
    fs::remove(channel / "KVN-release-41.zip");
    fs::remove(channel / "KVN-release-41.zip.files");
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(CheckChannelTest, MissingManifest) {
    fs::remove(channel / "KVN-alpha.manifest");
    EXPECT_THAT(faults(), ElementsAre("\"KVN-alpha.manifest\" is missing."));
}

TEST_F(CheckChannelTest, ManifestThatTheUpdaterRefuses) {
    writeFile(channel / "KVN-alpha.manifest", readFile(channel / "KVN-alpha.manifest") + "extra=1\n");
    EXPECT_THAT(faults(), ElementsAre("\"KVN-alpha.manifest\" would be refused by the updater: Manifest contains an "
                                      "unknown field."));
    writeFile(channel / "KVN-alpha.manifest", "");
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("invalid size")));
}

TEST_F(CheckChannelTest, MissingPackage) {
    fs::remove(package);
    EXPECT_THAT(faults(), ElementsAre("\"KVN-release-42.zip\" is missing."));
}

TEST_F(CheckChannelTest, PackageOfTheWrongSize) {
    const auto size = fs::file_size(package);
    fs::resize_file(package, size - 1);
    EXPECT_THAT(faults(), ElementsAre("\"KVN-release-42.zip\" has " + std::to_string(size - 1) + " bytes instead of " +
                                      std::to_string(size) + "."));
}

TEST_F(CheckChannelTest, CorruptPackage) {
    flipLastByte(package);
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("\"KVN-release-42.zip\" is corrupt")));
}

TEST_F(CheckChannelTest, MissingInventory) {
    fs::remove(list);
    EXPECT_THAT(faults(), ElementsAre("\"KVN-release-42.zip.files\" is missing."));
}

TEST_F(CheckChannelTest, InventoryOfAnotherRelease) {
    writeFile(list, readFile(channel / "KVN-release-41.zip.files"));
    EXPECT_THAT(faults(), ElementsAre("\"KVN-release-42.zip.files\" would be refused by the updater: File inventory "
                                      "does not match the selected release."));
}

TEST_F(CheckChannelTest, InventoryThatNamesOtherContentThanThePackageHolds) {
    std::string text = readFile(list);
    const std::size_t line = text.find("data/nothing.txt");
    text.insert(text.find('\n', line) + 1,
                "data/other.txt\t0\te3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855\n");
    writeFile(list, text);
    EXPECT_THAT(faults(),
                UnorderedElementsAre("\"KVN-release-42.zip\": \"data/other.txt\" is missing in the package.",
                                     "\"KVN_MANAGED_FILES.txt\" and the file inventory do not name the same files."));
}

TEST_F(CheckChannelTest, NothingIsJudgedByAnInventoryThatBreaksOffInItsRecords) {
    const std::string text = readFile(list);
    const std::size_t second = text.find('\n', text.find("\nKVN") + 1) + 1;
    writeFile(list, text.substr(0, second) + "no record\n");
    EXPECT_THAT(faults(), ElementsAre("\"KVN-release-42.zip.files\" would be refused by the updater: File inventory "
                                      "record is malformed."));
}

TEST_F(CheckChannelTest, MissingWrongSizedAndCorruptObjectsAreAllNamed) {
    fs::remove(objectOf("data/level one.pak"));
    fs::resize_file(objectOf("Vorthmere.exe"), 3);
    flipLastByte(objectOf("data/sound/theme.ogg"));
    fs::remove(objectOf("KVNUpdater.exe"));
    fs::create_directory(objectOf("KVNUpdater.exe"));
    EXPECT_THAT(faults(),
                UnorderedElementsAre(AllOf(HasSubstr("data/level one.pak"), HasSubstr(".bin\" is missing.")),
                                     AllOf(HasSubstr("Vorthmere.exe"), HasSubstr("has 3 bytes instead of 8.")),
                                     AllOf(HasSubstr("theme.ogg"), HasSubstr("is corrupt")),
                                     AllOf(HasSubstr("KVNUpdater.exe"), HasSubstr("is not a regular file."))));
}

TEST_F(CheckChannelTest, FoldersThatAreOneOnWindows) {
    if (fs::exists(game / "DATA")) GTEST_SKIP() << "Here they are one already.";
    std::ostringstream output;
    Console console(output, false);
    EXPECT_THAT(checkChannel(channelOfAnyFiles(), false, console).faults, IsEmpty());
    fs::remove_all(folder / "other channel");
    putFile("Data/other.pak", "other");
    EXPECT_THAT(checkChannel(channelOfAnyFiles(), false, console).faults,
                ElementsAre("\"KVN-release-43.zip.files\": The folders \"data\" and \"Data\" are one and the same on "
                            "Windows."));
}

TEST_F(CheckChannelTest, FolderThatIsNoChannel) {
    std::ostringstream output;
    Console console(output, false);
    EXPECT_THAT(checkChannel(folder / "nowhere", false, console).faults,
                ElementsAre("\"KVN-alpha.manifest\" is missing."));
}

}  // namespace
}  // namespace vorthmere::publish::testing
