// Releases made by kvn-release, served over HTTPS and installed by the real updater.

#include <gmock/gmock.h>

#include <random>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/support/report_fields.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using update::testing::ReportFields;
using update::testing::reportFields;
using update::testing::reports;

std::string withSeparators(std::string digits) {
    for (std::size_t position = digits.size(); position > 3;) {
        position -= 3;
        digits.insert(position, 1, ',');
    }
    return digits;
}

class PublisherRoundTripTest : public EndToEndTest {
protected:
    PublisherRoundTripTest() {
        static_cast<void>(channelCertificates());
        layOut(sampleRelease42(), game_);
    }

    void publish(std::uint32_t release = 42) {
        const ToolEnd end = runPublisher(buildArguments(release, game_, channel_));
        ASSERT_EQ(end.exitCode, 0) << end.output;
        for (const auto& [path, file] : publishedFiles(release, game_))
            scenario.managedPaths.insert(path);
    }

    [[nodiscard]] std::string plan() const {
        return runPublisher({"plan", "--from", scenario.installation.string(), "--channel", channel_.string()}).output;
    }

    void update() {
        const PlainChannel server(channel_);
        EXPECT_EQ(runUpdater(Source::channel), 0);
    }

    void expectEveryFileOfTheGameFolder(std::uint32_t release = 42) const {
        expectInstalled(publishedFiles(release, game_));
    }

    [[nodiscard]] std::uint64_t packageBytes() const {
        return fs::file_size(channel_ / "KVN-release-42.zip");
    }

    const fs::path game_ = scenario.root / "game to publish";
    const fs::path channel_ = scenario.root / "published";
};

TEST_F(PublisherRoundTripTest, UpdaterInstallsExactlyTheGameFolder) {
    publish();
    update();
    expectEveryFileOfTheGameFolder();
    EXPECT_THAT(transferReport(), reports({{"mode", "incremental"}}));
}

TEST_F(PublisherRoundTripTest, UpdaterInstallsTheCompletePackageWhenTheInventoryIsGone) {
    publish();
    fs::remove(channel_ / "KVN-release-42.zip.files");
    update();
    expectEveryFileOfTheGameFolder();
    EXPECT_THAT(transferReport(), reports({{"mode", "full"}, {"bytes", std::to_string(packageBytes())}}));
}

TEST_F(PublisherRoundTripTest, StoredFilesOfAPackageAreInstalled) {
    const std::string packed = noise(300'000, 1);
    writeFile(game_ / "data/packed.pak", packed);
    publish();
    EXPECT_GT(packageBytes(), packed.size());
    fs::remove(channel_ / "KVN-release-42.zip.files");
    update();
    expectEveryFileOfTheGameFolder();
}

TEST_F(PublisherRoundTripTest, RollbackUnderAHigherNumberBringsTheOldContentBack) {
    publish(42);
    fs::remove_all(game_);
    layOut(sampleRelease41(), game_);
    publish(43);
    update();
    expectEveryFileOfTheGameFolder(43);
}

TEST_F(PublisherRoundTripTest, PlanTellsWhatTheUpdaterThenDoes) {
    publish();
    const std::string planned = plan();
    update();
    const ReportFields report = reportFields(transferReport());
    EXPECT_EQ(report.at("mode"), "incremental");
    EXPECT_THAT(planned, AllOf(HasSubstr("reused:           " + report.at("reused") + " file"),
                               HasSubstr("fetched:          " + report.at("downloaded") + " file"),
                               HasSubstr("The update is incremental")));
    EXPECT_THAT(planned, testing::ContainsRegex("fetched: .*[ (]" + withSeparators(report.at("bytes")) + " bytes"));
}

/// A game that changes randomly from release to release.
class DrawnGame {
public:
    explicit DrawnGame(fs::path folder) : folder_(std::move(folder)) {}

    void change() {
        const int changes = draw(1, 6);
        for (int i = 0; i < changes; ++i)
            changeOne();
    }

    /// Replaces a file by a folder.
    ///
    /// @return the file's path
    std::string writeAFileThatBecomesAFolder() {
        const std::string path =
            "drawn/" + names_[static_cast<std::size_t>(draw(0, static_cast<int>(names_.size()) - 1))];
        writeFile(folder_ / path, "a file for one release");
        return path;
    }

private:
    int draw(int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(random_);
    }

    std::string content() {
        std::string bytes(static_cast<std::size_t>(draw(0, 40'000)), '\0');
        const bool isPacked = draw(0, 1) == 0;
        for (char& byte : bytes)
            byte = static_cast<char>(isPacked ? draw(0, 255) : draw('a', 'd'));
        return bytes;
    }

    void changeOne() {
        const std::string path = "drawn/folder " + std::to_string(draw(1, 4)) + "/file " + std::to_string(draw(1, 8));
        if (draw(0, 3) == 0)
            fs::remove(folder_ / path);
        else
            writeFile(folder_ / path, content());
    }

    const fs::path folder_;
    const std::vector<std::string> names_{"first", "second", "third"};
    std::mt19937 random_{20};
};

TEST_F(PublisherRoundTripTest, DrawnReleasesAreInstalledOneAfterTheOtherWithSomeLeftOut) {
    constexpr std::uint32_t kFirst = 42;
    constexpr std::uint32_t kReleases = 20;
    DrawnGame drawn(game_);
    int installed = 0;
    for (std::uint32_t release = kFirst; release < kFirst + kReleases; ++release) {
        drawn.change();
        publish(release);
        if (release % 5 == 0) {
            // A file becomes a folder, which players could not install.
            const std::string path = drawn.writeAFileThatBecomesAFolder();
            publish(++release);
            fs::remove(game_ / path);
            writeFile(game_ / path / "inside", "x");
            const ToolEnd refused = runPublisher(buildArguments(release + 1, game_, channel_));
            EXPECT_EQ(refused.exitCode, 1);
            EXPECT_THAT(refused.output, HasSubstr("\"" + path + "\" is a file in release"));
            fs::remove_all(game_ / path);
            publish(++release);
        }
        if (release % 3 == 1) continue;
        update();
        expectEveryFileOfTheGameFolder(release);
        ++installed;
    }
    EXPECT_GE(installed, 9);
}

/// A channel in which the changed files have exactly that many bytes more than the package. A file that deflates to
/// almost nothing adds to the changed bytes, but hardly to the package.
class PublisherDecisionTest : public PublisherRoundTripTest, public testing::WithParamInterface<int> {
protected:
    void publishWithChangedBytesAbovePackage(std::int64_t wanted) {
        std::int64_t size = 1000;
        for (int attempt = 0; attempt < 50; ++attempt) {
            fs::remove_all(channel_);
            writeFile(game_ / "data/filler.txt", std::string(static_cast<std::size_t>(size), 'f'));
            publish();
            const std::int64_t off = wanted - (changedBytes() - static_cast<std::int64_t>(packageBytes()));
            if (off == 0) return;
            size += off;
        }
        FAIL() << "the sizes do not meet";
    }

    [[nodiscard]] std::int64_t changedBytes() const {
        std::int64_t bytes = 0;
        for (const auto& [path, file] : publishedFiles(42, game_)) {
            const fs::path installed = scenario.installation / path;
            if (!fs::exists(installed) || readFile(installed) != file.content)
                bytes += static_cast<std::int64_t>(file.content.size());
        }
        return bytes;
    }
};

TEST_P(PublisherDecisionTest, PlanAndUpdaterDecideAlike) {
    publishWithChangedBytesAbovePackage(GetParam());
    const bool incremental = GetParam() < 0;
    EXPECT_THAT(plan(), HasSubstr(incremental ? "The update is incremental" : "The update takes the complete package"));
    update();
    EXPECT_THAT(transferReport(), reports({{"mode", incremental ? "incremental" : "full"}}));
    expectEveryFileOfTheGameFolder();
}

INSTANTIATE_TEST_SUITE_P(AroundThePackageSize, PublisherDecisionTest, testing::Values(-1, 0, 1));

}  // namespace
}  // namespace vorthmere::end_to_end
