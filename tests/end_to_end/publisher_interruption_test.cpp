// What clients of a channel see while kvn-release is publishing, and after it was killed.

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher.h"
#include "tests/end_to_end/support/tree_snapshot.h"
#include "tests/support/temporary_folder.h"
#include "update/file_inventory.h"
#include "update/manifest.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::Eq;
using testing::HasSubstr;

class PublisherInterruptionTest : public testing::Test {
protected:
    PublisherInterruptionTest() {
        writeFile(game_ / "Vorthmere.exe", "the game");
        writeFile(game_ / "KVNUpdater.exe", "the updater");
        writeFile(game_ / "data/level.pak", std::string(5000, 'l'));
    }

    [[nodiscard]] ToolEnd build(std::uint32_t release, unsigned killAtCall = 0) const {
        return runPublisher(buildArguments(release, game_, channel_), killAtCall);
    }

    [[nodiscard]] std::uint32_t offeredRelease() const {
        return readManifest().release;
    }

    [[nodiscard]] update::Manifest readManifest() const {
        update::Manifest manifest;
        std::string error;
        EXPECT_TRUE(update::parseManifest(readFile(channel_ / update::kManifestName), manifest, error)) << error;
        return manifest;
    }

    // Only names and contents, because a repeated run may write an equal file anew.
    [[nodiscard]] std::map<std::string, std::string> channelContent() const {
        std::map<std::string, std::string> content;
        for (const auto& [path, entry] : takeSnapshot(channel_))
            content[path] = entry.content;
        return content;
    }

    const update::testing::TemporaryFolder folder_;
    const fs::path game_ = folder_ / "game";
    const fs::path channel_ = folder_ / "channel";
};

TEST_F(PublisherInterruptionTest, KilledBeforeAnyOfItsCallsItLeavesAWholeReleaseAndARepetitionCompletes) {
    ASSERT_EQ(build(41).exitCode, 0);
    const fs::path before = folder_ / "before";
    fs::copy(channel_, before, fs::copy_options::recursive);
    writeFile(game_ / "data/level.pak", std::string(6000, 'm'));
    writeFile(game_ / "data/new.pak", "new");
    ASSERT_EQ(build(42).exitCode, 0);
    const auto complete = channelContent();

    unsigned call = 0;
    unsigned seenOld = 0;
    unsigned seenNew = 0;
    for (bool killed = true; killed;) {
        fs::remove_all(channel_);
        fs::copy(before, channel_, fs::copy_options::recursive);
        killed = build(42, ++call).exitCode == -1;

        const ToolEnd checked = runPublisher({"check", "--channel", channel_.string()});
        ASSERT_EQ(checked.exitCode, 0) << "killed before call " << call << "\n" << checked.output;
        const std::uint32_t offered = offeredRelease();
        ASSERT_THAT(offered, AnyOf(Eq(41u), Eq(42u))) << "killed before call " << call;
        if (killed) ++(offered == 41 ? seenOld : seenNew);

        const ToolEnd repeated = build(42);
        ASSERT_EQ(repeated.exitCode, 0) << "killed before call " << call << "\n" << repeated.output;
        ASSERT_EQ(channelContent(), complete) << "killed before call " << call;
        ASSERT_LT(call, 1000u);
    }
    // Most calls come before the manifest's rename, some after it.
    EXPECT_GT(seenOld, 20u);
    EXPECT_GT(seenNew, 0u);
    EXPECT_LT(seenNew, seenOld);
}

TEST_F(PublisherInterruptionTest, KilledInItsFirstReleaseItLeavesNoManifest) {
    for (unsigned call = 1; build(41, call).exitCode == -1; ++call) {
        const bool offered = fs::exists(channel_ / update::kManifestName);
        EXPECT_EQ(runPublisher({"check", "--channel", channel_.string()}).exitCode, offered ? 0 : 1)
            << "killed before call " << call;
        fs::remove_all(channel_);
    }
    EXPECT_EQ(offeredRelease(), 41u);
}

TEST_F(PublisherInterruptionTest, KilledWhileItRemovesWhatIsOldItLeavesASoundChannelAndARepetitionCompletes) {
    for (std::uint32_t release = 41; release <= 43; ++release) {
        writeFile(game_ / "data/level.pak", "level of release " + std::to_string(release));
        ASSERT_EQ(build(release).exitCode, 0);
    }
    const fs::path before = folder_ / "before";
    fs::copy(channel_, before, fs::copy_options::recursive);
    const std::vector<std::string> collect{"gc", "--channel", channel_.string(), "--keep", "1"};
    ASSERT_EQ(runPublisher(collect).exitCode, 0);
    const auto complete = channelContent();
    ASSERT_EQ(complete.size(), 8u) << "three files of one release and five objects";

    unsigned call = 0;
    for (bool killed = true; killed;) {
        fs::remove_all(channel_);
        fs::copy(before, channel_, fs::copy_options::recursive);
        killed = runPublisher(collect, ++call).exitCode == -1;
        const ToolEnd checked = runPublisher({"check", "--channel", channel_.string()});
        ASSERT_EQ(checked.exitCode, 0) << "killed before call " << call << "\n" << checked.output;
        ASSERT_THAT(inventoriesThatLackObjects(channel_), testing::IsEmpty()) << "killed before call " << call;
        ASSERT_EQ(runPublisher(collect).exitCode, 0) << "killed before call " << call;
        ASSERT_EQ(channelContent() == complete, true) << "killed before call " << call;
    }
    EXPECT_GT(call, 8u);
}

TEST_F(PublisherInterruptionTest, AtAnyMomentEverythingThatTheManifestNamesIsThere) {
    for (int i = 0; i < 40; ++i)
        writeFile(game_ / ("data/" + std::to_string(i)), std::string(2000, 'x') + std::to_string(i));
    ASSERT_EQ(build(1).exitCode, 0);

    std::atomic<bool> published{false};
    std::atomic<int> looks{0};
    std::string missing;
    std::thread client([&] {
        while (!published || looks == 0) {
            ++looks;
            const update::Manifest manifest = readManifest();
            const std::string package = manifest.url.substr(manifest.url.rfind('/') + 1);
            std::vector<update::InventoryEntry> entries;
            std::string error;
            if (fs::file_size(channel_ / package) != manifest.size ||
                !update::parseFileInventory(readFile(channel_ / (package + ".files")), manifest, entries, error))
                missing = package + " " + error;
            for (const update::InventoryEntry& entry : entries) {
                const std::string object = "KVN-file-" + entry.sha256 + ".bin";
                std::error_code failure;
                if (fs::file_size(channel_ / object, failure) != entry.size || failure) missing = object;
            }
        }
    });
    for (std::uint32_t release = 2; release <= 6; ++release) {
        for (int i = 0; i < 40; ++i)
            writeFile(game_ / ("data/" + std::to_string(i)), std::string(2000 + release, 'x') + std::to_string(i));
        EXPECT_EQ(build(release).exitCode, 0);
    }
    published = true;
    client.join();
    EXPECT_EQ(missing, "");
    EXPECT_GT(looks, 5);
}

}  // namespace
}  // namespace vorthmere::end_to_end
