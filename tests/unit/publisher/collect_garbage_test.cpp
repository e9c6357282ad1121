#include "publisher/collect_garbage.h"

#include <gmock/gmock.h>

#include <sstream>

#include "publisher/check_channel.h"
#include "publisher/durable_files.h"
#include "tests/unit/publisher/publishing.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using update::testing::writeFile;

class CollectGarbageTest : public PublishingTest {
protected:
    void SetUp() override {
        for (std::uint32_t release = 41; release <= 44; ++release) {
            putFile("data/level one.pak", "level one of release " + std::to_string(release));
            objects[release] = objectOf("data/level one.pak");
            publish(release);
        }
    }

    GarbageSummary collect(std::optional<std::uint32_t> keep, bool isDryRun = false) const {
        GarbageSummary summary;
        std::string error;
        EXPECT_TRUE(tryTo({channel, keep, isDryRun}, summary, error)) << error;
        return summary;
    }

    std::string refusal(std::optional<std::uint32_t> keep) const {
        GarbageSummary summary;
        std::string error;
        const Tree before = readTree(channel);
        EXPECT_FALSE(tryTo({channel, keep, false}, summary, error));
        EXPECT_EQ(readTree(channel), before);
        return error;
    }

    void expectSound() const {
        std::ostringstream output;
        Console console(output, false);
        EXPECT_THAT(checkChannel(channel, false, console).faults, IsEmpty());
    }

    static bool tryTo(const GarbageRequest& request, GarbageSummary& summary, std::string& error) {
        std::ostringstream output;
        Console console(output, false);
        return collectGarbage(request, console, summary, error);
    }

    std::map<std::uint32_t, fs::path> objects;
};

TEST_F(CollectGarbageTest, WithoutANumberOnlyWhatNoReleaseNamesIsRemoved) {
    const Tree before = readTree(channel);
    EXPECT_THAT(collect({}).removedFiles, IsEmpty());
    EXPECT_EQ(readTree(channel), before);
    const std::string orphan = "KVN-file-" + std::string(64, 'a') + ".bin";
    writeFile(channel / orphan, "orphan");
    writeFile(channel / "readme.txt", "the administrator's");
    const GarbageSummary summary = collect({});
    EXPECT_THAT(summary.removedFiles, ElementsAre(orphan));
    EXPECT_EQ(summary.removedBytes, 6u);
    EXPECT_TRUE(fs::exists(channel / "readme.txt"));
}

TEST_F(CollectGarbageTest, NewestReleasesStayWithAllThatTheyNeed) {
    const GarbageSummary summary = collect(2);
    EXPECT_THAT(summary.keptReleases, ElementsAre(44, 43));
    EXPECT_THAT(summary.removedReleases, ElementsAre(42, 41));
    EXPECT_FALSE(fs::exists(objects[41]));
    EXPECT_FALSE(fs::exists(objects[42]));
    EXPECT_TRUE(fs::exists(objects[43]));
    EXPECT_FALSE(fs::exists(channel / "KVN-release-42.zip"));
    EXPECT_FALSE(fs::exists(channel / "KVN-release-42.zip.files"));
    EXPECT_TRUE(fs::exists(channel / "KVN-release-43.zip"));
    expectSound();
    EXPECT_THAT(collect(2).removedFiles, IsEmpty());
}

TEST_F(CollectGarbageTest, PublishedReleaseAlwaysStays) {
    EXPECT_THAT(collect(1).keptReleases, ElementsAre(44));
    expectSound();
    publish(44);
}

TEST_F(CollectGarbageTest, DryRunTellsTheSameAndRemovesNothing) {
    const Tree before = readTree(channel);
    const GarbageSummary told = collect(1, true);
    EXPECT_EQ(readTree(channel), before);
    EXPECT_EQ(collect(1).removedFiles, told.removedFiles);
}

TEST_F(CollectGarbageTest, ReleaseThatWasBegunAndNeverOfferedGoesWithANumber) {
    fs::copy_file(channel / "KVN-release-44.zip", channel / "KVN-release-45.zip");
    EXPECT_THAT(collect({}).removedFiles, IsEmpty());
    EXPECT_THAT(collect(4).removedFiles, ElementsAre("KVN-release-45.zip"));
}

TEST_F(CollectGarbageTest, NothingIsRemovedWhenWhatIsNeededIsNotKnown) {
    writeFile(channel / "KVN-release-43.zip.files", "damaged");
    EXPECT_THAT(refusal(2), HasSubstr("it is not known which objects are needed"));
    collect(1);
    writeFile(channel / "KVN-release-44.zip.files", "damaged");
    EXPECT_THAT(refusal(1), HasSubstr("it is not known which objects are needed"));
    fs::remove(channel / "KVN-alpha.manifest");
    EXPECT_THAT(refusal(1), StartsWith("\"KVN-alpha.manifest\" is missing"));
}

TEST_F(CollectGarbageTest, BuildAtTheSameTimeIsNotDisturbed) {
    Descriptor lock;
    std::string error;
    const Tree before = readTree(channel);
    ASSERT_TRUE(lockFolder(channel, lock, error)) << error;
    GarbageSummary summary;
    EXPECT_FALSE(tryTo({channel, 1, false}, summary, error));
    EXPECT_THAT(error, StartsWith("Another kvn-release is writing to"));
    lock = Descriptor();
    EXPECT_EQ(readTree(channel), before);
}

}  // namespace
}  // namespace vorthmere::publish::testing
