#include "publisher/update_plan.h"

#include <gmock/gmock.h>

#include <sstream>

#include "publisher/release_difference.h"
#include "tests/unit/publisher/publishing.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using update::testing::writeFile;

std::vector<std::string> pathsOf(const std::vector<update::InventoryEntry>& entries) {
    std::vector<std::string> paths;
    for (const update::InventoryEntry& entry : entries)
        paths.push_back(entry.path);
    return paths;
}

TEST(ReleaseDifference, NamesAreComparedAsOnWindows) {
    const ReleaseDifference difference = compareReleases({{"Data/A", "1", 5}}, {{"data/a", "1", 5}});
    EXPECT_THAT(pathsOf(difference.reused), ElementsAre("data/a"));
    EXPECT_THAT(difference.removed, IsEmpty());
}

TEST(ReleaseDifference, EqualContentUnderAnotherNameIsFetchedForEachName) {
    const ReleaseDifference difference =
        compareReleases({{"a", "1", 5}, {"gone", "2", 6}}, {{"a", "1", 5}, {"b", "1", 5}, {"c", "1", 5}});
    EXPECT_THAT(pathsOf(difference.fetched), ElementsAre("b", "c"));
    EXPECT_EQ(difference.bytesToFetch, 10u);
    EXPECT_EQ(difference.bytesReused, 5u);
    EXPECT_THAT(difference.removed, ElementsAre("gone"));
}

class UpdatePlanTest : public PublishingTest {
protected:
    void SetUp() override {
        publish(41);
        fs::copy(game, oldGame, fs::copy_options::recursive);
        putFile("data/level one.pak", "level one, mended");
        putFile("data/level two.pak", "level two");
        removeFile("data/nothing.txt");
        publish(42);
    }

    UpdatePlan planFrom(const fs::path& from) const {
        std::ostringstream output;
        Console console(output, false);
        UpdatePlan plan;
        std::string error;
        EXPECT_TRUE(planUpdate(from, channel, console, plan, error)) << error;
        return plan;
    }

    std::string refusalFrom(const fs::path& from) const {
        std::ostringstream output;
        Console console(output, false);
        UpdatePlan plan;
        std::string error;
        EXPECT_FALSE(planUpdate(from, channel, console, plan, error));
        return error;
    }

    const fs::path oldGame = folder / "old game";
};

TEST_F(UpdatePlanTest, FromAnInventory) {
    const UpdatePlan plan = planFrom(channel / "KVN-release-41.zip.files");
    EXPECT_EQ(plan.fromRelease, 41u);
    EXPECT_EQ(plan.target.release, 42u);
    EXPECT_THAT(pathsOf(plan.difference.fetched),
                ElementsAre("KVN_MANAGED_FILES.txt", "data/level one.pak", "data/level two.pak", "kvn_release.txt"));
    EXPECT_THAT(pathsOf(plan.difference.reused),
                ElementsAre("KVNUpdater.exe", "Vorthmere.exe", "data/sound/copy of theme.ogg", "data/sound/theme.ogg"));
    EXPECT_THAT(plan.difference.removed, ElementsAre("data/nothing.txt"));
    EXPECT_TRUE(plan.incremental);
}

TEST_F(UpdatePlanTest, FromTheFolderThatTheOlderReleaseWasBuiltFrom) {
    const UpdatePlan plan = planFrom(oldGame);
    const UpdatePlan same = planFrom(channel / "KVN-release-41.zip.files");
    EXPECT_EQ(plan.difference.fetched, same.difference.fetched);
    EXPECT_EQ(plan.difference.reused, same.difference.reused);
    EXPECT_EQ(plan.difference.removed, same.difference.removed);
    EXPECT_EQ(plan.fromRelease, 0u);
}

TEST_F(UpdatePlanTest, UnchangedSetOfFilesKeepsTheListOfAGameFolder) {
    putFile("data/nothing.txt", "");
    removeFile("data/level two.pak");
    publish(43);
    EXPECT_THAT(pathsOf(planFrom(oldGame).difference.fetched), ElementsAre("data/level one.pak", "kvn_release.txt"));
}

TEST_F(UpdatePlanTest, FromAnInstallationOnlyManagedFilesAreRemoved) {
    writeFile(oldGame / "KVN_MANAGED_FILES.txt",
              "KVN_MANAGED_FILES.txt\nVorthmere.exe\nKVNUpdater.exe\ndata/nothing.txt\n");
    writeFile(oldGame / "saves/slot 1.sav", "the player's");
    writeFile(oldGame / "saves/naïve+name", "the player's");
    writeFile(oldGame / ".kvn-update/backup/x", "the updater's");
    EXPECT_THAT(planFrom(oldGame).difference.removed, ElementsAre("data/nothing.txt"));
}

TEST_F(UpdatePlanTest, ListThatTheUpdaterRefuses) {
    writeFile(oldGame / "KVN_MANAGED_FILES.txt", "Vorthmere.exe\n");
    EXPECT_THAT(refusalFrom(oldGame), HasSubstr("Managed-file list is missing a required runtime."));
}

TEST_F(UpdatePlanTest, WhatIsNoInventory) {
    EXPECT_THAT(refusalFrom(channel / "KVN-alpha.manifest"), HasSubstr("is not a file inventory"));
    writeFile(folder / "header", "KVN-FILES/1\narchive=0\nrelease=1\nprotocol=1\nversion=x\n");
    EXPECT_THAT(refusalFrom(folder / "header"), HasSubstr("File inventory is missing release metadata."));
}

TEST_F(UpdatePlanTest, WhatDoesNotExistIsNamed) {
    const std::string sentence = "\"" + (folder / "nowhere").string() + "\" does not exist.";
    EXPECT_EQ(refusalFrom(folder / "nowhere"), sentence);
    fs::remove(channel / "KVN-release-42.zip.files");
    EXPECT_EQ(refusalFrom(folder / "nowhere"), sentence);
}

TEST_F(UpdatePlanTest, WithoutASoundInventoryTheUpdateTakesTheCompletePackage) {
    const fs::path inventory = channel / "KVN-release-42.zip.files";
    const auto expectPackage = [this](const fs::path& from, const std::string& reason) {
        const UpdatePlan plan = planFrom(from);
        EXPECT_EQ(plan.packageReason, reason);
        EXPECT_FALSE(plan.incremental);
        EXPECT_EQ(plan.target.release, 42u);
        EXPECT_THAT(plan.difference.removed, IsEmpty());
    };
    writeFile(inventory, "broken");
    expectPackage(oldGame,
                  "\"KVN-release-42.zip.files\" would be refused by the updater: File inventory does not match "
                  "the selected release.");
    fs::remove(inventory);
    expectPackage(oldGame, "\"KVN-release-42.zip.files\" is missing.");
    expectPackage(channel / "KVN-release-41.zip.files", "\"KVN-release-42.zip.files\" is missing.");
    EXPECT_EQ(planFrom(channel / "KVN-release-41.zip.files").fromRelease, 41u);
}

TEST_F(UpdatePlanTest, ChannelWithoutARelease) {
    fs::remove(channel / "KVN-alpha.manifest");
    EXPECT_THAT(refusalFrom(oldGame), HasSubstr("offers no release"));
}

}  // namespace
}  // namespace vorthmere::publish::testing
