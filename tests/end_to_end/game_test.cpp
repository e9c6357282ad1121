#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/end_to_end/support/waiting.h"
#include "tests/support/report_fields.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

/// How the updater waits for the game's end and starts the game again.
class GameTest : public EndToEndTest {
protected:
    UpdaterCommand relaunching(Source source) const {
        UpdaterCommand command = this->command(source);
        command.relaunch = true;
        return command;
    }

    /// Waits for the game's report about its start, and returns it.
    std::string gameReport() const {
        const bool hasStarted = waitUntil([this] { return fs::exists(scenario.gameReport); });
        return hasStarted ? readFile(scenario.gameReport) : "the game never started";
    }

    /// Waits until the updater has cleared its work folder, which is the last thing that it does.
    bool waitUntilUpdaterIsDone() const {
        return waitUntil([this] { return !fs::exists(scenario.workFolder / "staging"); });
    }

    std::string expectedReport() const {
        const std::string folder = windowsPath(scenario.installation);
        std::string report = "command line=";
        report.append("\"").append(folder).append("\\Vorthmere.exe\"\n");
        report.append("current folder=").append(folder).append("\n");
        return report.append("inherited pipes=0\n");
    }

    /// Offers a release whose game the platform cannot start.
    void offerABrokenGame(const ReleaseFiles& more = {}) {
        broken_ = sampleRelease42();
        broken_["Vorthmere.exe"] = {"no program"};
        for (const auto& [path, file] : more)
            broken_[path] = file;
        broken_ = withReleaseMetadata(broken_, 42);
        scenario.release = publish(scenario.release.folder, broken_, 42);
        for (const auto& [path, file] : broken_)
            scenario.managedPaths.insert(path);
    }

    ReleaseFiles broken_;
};

TEST_F(GameTest, IsStartedInTheInstallationWithoutArgumentsAndInheritsNothing) {
    EXPECT_EQ(runUpdater(relaunching(Source::completePackage)), 0);
    EXPECT_EQ(gameReport(), expectedReport());
    expectRelease42();
}

TEST_F(GameTest, IsStartedWhenTheInstallationIsCurrent) {
    UpdaterCommand command = relaunching(Source::incremental);
    command.current = "42";
    EXPECT_EQ(runUpdater(command), 0);
    EXPECT_EQ(gameReport(), expectedReport());
    expectRelease41();
}

TEST_F(GameTest, IsNotStartedWhenThatIsNotWanted) {
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    EXPECT_FALSE(fs::exists(scenario.gameReport));
}

TEST_F(GameTest, WhenItCannotBeStartedThePreviousReleaseComesBack) {
    offerABrokenGame();
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    for (const Source source : {Source::incremental, Source::completePackage}) {
        EXPECT_EQ(runUpdater(relaunching(source)), 28);
        expectInstallation(before);
        EXPECT_EQ(readFile(scenario.workFolder / "staging" / "Vorthmere.exe"), "no program");
    }
}

TEST_F(GameTest, WhenItCannotBeStartedAndAnOldFileWasMissingTheNewReleaseStays) {
    // The rollback needs every file of the previous release's list, and this one is not in the backup.
    offerABrokenGame();
    fs::remove(scenario.installation / "data" / "old" / "legacy.pak");
    EXPECT_EQ(runUpdater(relaunching(Source::incremental)), 28);
    expectInstalled(broken_);
}

TEST_F(GameTest, StartsItsOwnUpdaterAndIsStartedAgainAsTheNewRelease) {
    useUpdater(scenario.installation / "Vorthmere.exe");
    const UpdaterCommand local = command(Source::incremental);
    ChildProcess game = startUpdater(std::vector<std::string>{
        "--update", "--test-no-ui", "--manifest-file", local.manifestFile, "--package-file", local.packageFile,
        "--inventory-file", local.inventoryFile, "--object-directory", local.objectDirectory});
    EXPECT_EQ(game.wait(Milliseconds(60'000)).exitCode, 0);
    EXPECT_EQ(gameReport(), expectedReport());
    expectRelease42();
    EXPECT_THAT(transferReport(), update::testing::reports({{"mode", "incremental"}}));
    EXPECT_TRUE(waitUntilUpdaterIsDone());
}

TEST_F(GameTest, DoesNotStartItsUpdaterWhenItDoesNotKnowItsRelease) {
    fs::remove(scenario.installation / "kvn_release.txt");
    useUpdater(scenario.installation / "Vorthmere.exe");
    ChildProcess game = startUpdater(std::vector<std::string>{"--update"});
    EXPECT_EQ(game.wait(Milliseconds(60'000)).exitCode, 2);
    EXPECT_FALSE(fs::exists(scenario.gameReport));
}

TEST_F(GameTest, ThatHasEndedIsNotWaitedFor) {
    OpenGame game;
    game.close();
    UpdaterCommand command = this->command(Source::incremental);
    command.parent = game.processId();
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
    EXPECT_LT(lastDuration(), Milliseconds(60'000));
}

TEST_F(GameTest, NumberZeroIsNobody) {
    UpdaterCommand command = this->command(Source::incremental);
    command.parent = std::to_string(0);
    EXPECT_EQ(runUpdater(command), 0);
    expectRelease42();
}

TEST_F(GameTest, IsWaitedForBeforeAnythingIsInstalled) {
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    EXPECT_EQ(runUpdater(command(Source::incremental),
                         [&] {
                             expectInstallation(before);
                             EXPECT_FALSE(fs::exists(scenario.workFolder / "backup"));
                         }),
              0);
    expectRelease42();
}

}  // namespace
}  // namespace vorthmere::end_to_end
