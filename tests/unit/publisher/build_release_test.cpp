#include <gmock/gmock.h>

#include <algorithm>

#include "publisher/channel_listing.h"
#include "publisher/durable_files.h"
#include "publisher/package_reader.h"
#include "publisher/sha256.h"
#include "tests/unit/publisher/other_time_zone.h"
#include "tests/unit/publisher/publishing.h"
#include "update/managed_file_list.h"
#include "update/release_channel.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAreArray;
using update::testing::readFile;
using update::testing::writeFile;

class BuildReleaseTest : public PublishingTest {};

TEST_F(BuildReleaseTest, ManifestSaysWhatWasAsked) {
    ReleaseRequest wanted = request(42);
    wanted.details.mandatory = true;
    ASSERT_EQ(refusalOf(wanted), "");
    const std::string package = readFile(channel / "KVN-release-42.zip");
    update::Manifest expected = wanted.details;
    expected.url = std::string(update::kDownloadBaseUrl) + "KVN-release-42.zip";
    expected.size = package.size();
    expected.sha256 = sha256Of(package);
    EXPECT_EQ(manifest(), expected);
}

TEST_F(BuildReleaseTest, InventoryNamesEveryFileAndEveryObjectHoldsItsContent) {
    publish(42);
    std::vector<std::string> paths;
    for (const update::InventoryEntry& entry : inventory()) {
        paths.push_back(entry.path);
        const std::string object = readFile(channel / ("KVN-file-" + entry.sha256 + ".bin"));
        EXPECT_EQ(object.size(), entry.size) << entry.path;
        EXPECT_EQ(sha256Of(object), entry.sha256) << entry.path;
        if (fs::exists(game / entry.path)) {
            EXPECT_EQ(object, readFile(game / entry.path)) << entry.path;
        }
    }
    EXPECT_THAT(paths, ElementsAre("KVNUpdater.exe", "KVN_MANAGED_FILES.txt", "Vorthmere.exe", "data/level one.pak",
                                   "data/nothing.txt", "data/sound/copy of theme.ogg", "data/sound/theme.ogg",
                                   "kvn_release.txt"));
}

TEST_F(BuildReleaseTest, GeneratedFilesSayWhatTheReleaseIs) {
    publish(42);
    std::map<std::string, std::string> contents;
    std::vector<std::string> paths;
    for (const update::InventoryEntry& entry : inventory()) {
        contents[entry.path] = readFile(channel / ("KVN-file-" + entry.sha256 + ".bin"));
        paths.push_back(entry.path);
    }
    EXPECT_EQ(contents["kvn_release.txt"], "release=42\nversion=0.9.3 alpha\nprotocol=7\n");
    std::vector<std::string> listed;
    std::string error;
    ASSERT_TRUE(update::parseManagedFileList(contents["KVN_MANAGED_FILES.txt"], listed, error)) << error;
    EXPECT_THAT(listed, UnorderedElementsAreArray(paths));
    // The updater installs the game's program last, so nobody can play an incomplete installation.
    EXPECT_EQ(listed.back(), "Vorthmere.exe");
}

TEST_F(BuildReleaseTest, FileWithAPathThatIsTooLongForPlainWindowsPathsIsPublished) {
    const std::string path = std::string(118, 'a') + "/" + std::string(118, 'b') + "/c";
    putFile(path, "deep");
    publish(42);
    const std::vector<update::InventoryEntry> entries = inventory();
    const auto deep = std::find_if(entries.begin(), entries.end(),
                                   [&path](const update::InventoryEntry& entry) { return entry.path == path; });
    ASSERT_NE(deep, entries.end());
    EXPECT_EQ(deep->sha256, sha256Of("deep"));
    EXPECT_THAT(entries, ::testing::SizeIs(9));
}

TEST_F(BuildReleaseTest, GameFolderStaysUntouched) {
    const Tree before = readTree(game);
    publish(42);
    EXPECT_EQ(readTree(game), before);
}

TEST_F(BuildReleaseTest, ListAndMarkerOfAnEarlierReleaseAreReplaced) {
    putFile("KVN_MANAGED_FILES.txt", "Vorthmere.exe\n");
    putFile("kvn_release.txt", "release=1\n");
    const Tree before = readTree(game);
    publish(42);
    EXPECT_EQ(readTree(game), before);
    for (const update::InventoryEntry& entry : inventory()) {
        const std::string content = readFile(channel / ("KVN-file-" + entry.sha256 + ".bin"));
        if (entry.path == "kvn_release.txt") {
            EXPECT_THAT(content, HasSubstr("release=42\n"));
        }
        if (entry.path == "KVN_MANAGED_FILES.txt") {
            EXPECT_THAT(content, HasSubstr("data/level one.pak\n"));
        }
    }
}

TEST_F(BuildReleaseTest, ChannelHoldsNothingButTheRelease) {
    publish(42);
    for (const auto& [name, content] : readTree(channel))
        EXPECT_TRUE(name == "KVN-alpha.manifest" || name == "KVN-release-42.zip" ||
                    name == "KVN-release-42.zip.files" || name.starts_with("KVN-file-"))
            << name;
}

TEST_F(BuildReleaseTest, EqualContentIsStoredOnce) {
    const ReleaseSummary summary = publish(42);
    EXPECT_EQ(summary.files, 8u);
    EXPECT_EQ(summary.distinctObjects, 7u);
    EXPECT_EQ(summary.newObjects, 7u);
    EXPECT_FALSE(summary.previousRelease.has_value());
}

TEST_F(BuildReleaseTest, NextReleaseKeepsEveryFileOfTheFormerOne) {
    publish(41);
    const Tree before = readTree(channel);
    const auto written = fs::last_write_time(objectOf("data/sound/theme.ogg"));
    putFile("data/level one.pak", "level one, mended");
    const ReleaseSummary summary = publish(42);

    EXPECT_EQ(fs::last_write_time(objectOf("data/sound/theme.ogg")), written);
    const Tree after = readTree(channel);
    for (const auto& [name, content] : before)
        if (name != "KVN-alpha.manifest") {
            EXPECT_TRUE(after.contains(name) && after.at(name) == content) << name;
        }

    // The changed file and the marker; the list of files is the same.
    EXPECT_EQ(summary.newObjects, 2u);
    EXPECT_EQ(summary.previousRelease, 41u);
    EXPECT_EQ(summary.bytesFromPrevious, 17u + std::string("release=42\nversion=0.9.3 alpha\nprotocol=7\n").size());
    EXPECT_TRUE(summary.incrementalFromPrevious);
}

TEST_F(BuildReleaseTest, SummaryNamesAPreviousInventoryThatCannotBeRead) {
    const fs::path former = channel / "KVN-release-41.zip.files";
    const std::string missing = "The inventory of release 41 cannot be read: \"KVN-release-41.zip.files\" is missing.";
    publish(41);
    fs::remove(former);
    ReleaseSummary summary = publish(42);
    EXPECT_EQ(summary.previousRelease, 41u);
    EXPECT_EQ(summary.previousFault, missing);

    // A repetition knows the previous release only by the names in the channel.
    summary = publish(42);
    EXPECT_EQ(summary.previousRelease, 41u);
    EXPECT_EQ(summary.previousFault, missing);
    writeFile(former, "broken");
    EXPECT_THAT(publish(42).previousFault, HasSubstr("is not a file inventory."));
    writeFile(former, "");
    EXPECT_THAT(publish(43).previousFault, "");
}

TEST_F(BuildReleaseTest, SameInputGivesTheSameBytes) {
    publish(42);
    const Tree first = readTree(channel);
    fs::remove_all(channel);

    // The same files in another order, with other times and attributes, in another time zone.
    const Tree files = readTree(game);
    fs::remove_all(game);
    for (auto file = files.rbegin(); file != files.rend(); ++file)
        if (file->second != "folder") putFile(file->first, file->second);
    fs::permissions(game / "Vorthmere.exe", fs::perms::owner_all);
    fs::last_write_time(game / "Vorthmere.exe", fs::file_time_type::clock::now() - std::chrono::hours(99999));
    const OtherTimeZone timeZone;
    publish(42);
    EXPECT_EQ(readTree(channel), first);
}

TEST_F(BuildReleaseTest, RepetitionCompletesADamagedChannel) {
    publish(41);
    putFile("data/level one.pak", "level one, mended");
    publish(42);
    const Tree whole = readTree(channel);

    fs::remove(objectOf("data/level one.pak"));
    writeFile(objectOf("data/sound/theme.ogg"), packedContent(3000, 2));
    writeFile(channel / "KVN-release-42.zip", "broken");
    fs::remove(channel / "KVN-release-42.zip.files");
    const ReleaseSummary summary = publish(42);
    EXPECT_EQ(readTree(channel), whole);
    EXPECT_EQ(summary.newObjects, 2u);
    EXPECT_EQ(summary.mendedObjects, 1u);
    EXPECT_EQ(summary.previousRelease, 41u);
}

TEST_F(BuildReleaseTest, RepetitionChangesNothingInASoundChannel) {
    publish(42);
    const auto written = fs::last_write_time(channel / "KVN-release-42.zip");
    const auto published = fs::last_write_time(channel / "KVN-alpha.manifest");
    const ReleaseSummary summary = publish(42);
    EXPECT_EQ(summary.newObjects, 0u);
    EXPECT_EQ(fs::last_write_time(channel / "KVN-release-42.zip"), written);
    EXPECT_EQ(fs::last_write_time(channel / "KVN-alpha.manifest"), published);
}

TEST_F(BuildReleaseTest, LeftoversOfAnInterruptedRunAreRemoved) {
    publish(41);
    writeFile(channel / kWorkFolderName / "KVN-alpha.manifest", "half a manif");
    publish(42);
    EXPECT_FALSE(fs::exists(channel / kWorkFolderName));
}

TEST_F(BuildReleaseTest, FilesFromAnInterruptedRunWithOtherContentAreReplaced) {
    publish(41);
    writeFile(channel / "KVN-release-42.zip", "from a run that was interrupted before the manifest");
    writeFile(channel / "KVN-release-42.zip.files", "likewise");
    publish(42);
    EXPECT_EQ(readFile(channel / "KVN-release-42.zip").size(), manifest().size);
    EXPECT_THAT(inventory(), ::testing::SizeIs(8));
}

}  // namespace
}  // namespace vorthmere::publish::testing
