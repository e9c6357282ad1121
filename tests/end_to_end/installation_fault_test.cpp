// Every single step of the installation fails once, in the forward direction and in the one that puts the previous
// release back when the new game does not start. The faults are prepared while the updater waits for the game, that is,
// behind the last check of the new release and before the first file moves.

#include <gmock/gmock.h>

#include <set>

#include "tests/end_to_end/support/base_test.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"
#include "tests/end_to_end/support/sample_release.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

constexpr int kInstallationFailed = 27;

std::vector<std::string> pathsOf(const ReleaseFiles& files) {
    std::vector<std::string> paths;
    for (const auto& [path, file] : files)
        paths.push_back(path);
    return paths;
}

/// The folders in which a release has files, the installation itself left out.
std::set<std::string> foldersOf(const ReleaseFiles& files) {
    std::set<std::string> folders;
    for (const auto& [path, file] : files)
        for (fs::path folder = fs::path(path).parent_path(); !folder.empty(); folder = folder.parent_path())
            folders.insert(folder.generic_string());
    return folders;
}

/// A file or folder that is out of the way during a run.
class MovedAside {
public:
    MovedAside(fs::path path, fs::path place) : path_(std::move(path)), place_(std::move(place)) {
        fs::rename(path_, place_);
    }
    MovedAside(const MovedAside&) = delete;
    MovedAside& operator=(const MovedAside&) = delete;
    ~MovedAside() {
        fs::remove_all(path_);
        fs::rename(place_, path_);
    }

private:
    fs::path path_;
    fs::path place_;
};

class InstallationFaultTest : public EndToEndTest {
protected:
    InstallationFaultTest() {
        // Not the installation's own, so that its file can be the one that fails.
        useUpdater(updaterProgram());
    }

    /// Runs the updater up to the point where it would begin to install, prepares a fault, and expects that the run
    /// fails and that everything is where it was when the fault was there.
    void expectRestoredAfter(const std::function<void()>& prepare) {
        TreeSnapshot before;
        EXPECT_EQ(runUpdater(command(Source::incremental),
                             [&] {
                                 prepare();
                                 before = scenario.takeInstallationSnapshot();
                             }),
                  kInstallationFailed);
        expectInstallation(before);
        EXPECT_EQ(filesIn("backup"), std::set<std::string>());
    }

    std::set<std::string> filesIn(const char* folder) const {
        std::set<std::string> paths;
        if (fs::exists(scenario.workFolder / folder))
            for (const auto& [path, entry] : filesOnly(takeSnapshot(scenario.workFolder / folder)))
                paths.insert(path);
        return paths;
    }

    const std::vector<std::string> oldPaths = pathsOf(sampleRelease41());
    const std::vector<std::string> newPaths = pathsOf(sampleRelease42());
    const fs::path aside = scenario.workFolder / "aside";
};

TEST_F(InstallationFaultTest, EveryInstalledFileCanBeInUse) {
    for (const std::string& path : oldPaths) {
        SCOPED_TRACE(path);
        std::optional<FileLock> lock;
        TreeSnapshot before = scenario.takeInstallationSnapshot();
        EXPECT_EQ(
            runUpdater(command(Source::incremental), [&] { lock.emplace(std::vector{scenario.installation / path}); }),
            kInstallationFailed);
        expectInstallation(before);
        EXPECT_EQ(filesIn("backup"), std::set<std::string>());
    }
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

TEST_F(InstallationFaultTest, AFolderCanBeInThePlaceOfEveryFile) {
    for (const std::string& path : scenario.managedPaths) {
        SCOPED_TRACE(path);
        const fs::path file = scenario.installation / path;
        std::optional<MovedAside> moved;
        expectRestoredAfter([&] {
            if (fs::exists(file)) moved.emplace(file, aside);
            fs::create_directories(file);
        });
        if (!moved) fs::remove(file);
    }
}

TEST_F(InstallationFaultTest, AFileCanBeInThePlaceOfEveryFolder) {
    for (const std::string& path : foldersOf(sampleRelease42())) {
        SCOPED_TRACE(path);
        const fs::path folder = scenario.installation / path;
        std::optional<MovedAside> moved;
        // A player's files in the folder are out of the way with it.
        expectRestoredAfter([&] {
            if (fs::exists(folder))
                moved.emplace(folder, aside);
            else
                fs::create_directories(folder.parent_path());
            writeFile(folder, "a file");
            recordProtectedAgain();
        });
        if (!moved) fs::remove(folder);
    }
}

TEST_F(InstallationFaultTest, EveryPlaceInTheBackupCanBeTaken) {
    for (const std::string& path : oldPaths) {
        SCOPED_TRACE(path);
        const auto takePlace = [&] { fs::create_directories(scenario.workFolder / "backup" / path); };
        expectRestoredAfter(takePlace);
    }
}

TEST_F(InstallationFaultTest, EveryFolderInTheBackupCanBeAFile) {
    for (const std::string& path : foldersOf(sampleRelease41())) {
        SCOPED_TRACE(path);
        const TreeSnapshot before = scenario.takeInstallationSnapshot();
        EXPECT_EQ(runUpdater(command(Source::incremental),
                             [&] { writeFile(scenario.workFolder / "backup" / path, "a file"); }),
                  kInstallationFailed);
        expectInstallation(before);
    }
}

TEST_F(InstallationFaultTest, ReadOnlyFilesHinderNeitherTheInstallationNorItsRollback) {
    const std::string last = newPaths.back();
    for (const std::string& path : oldPaths)
        setReadOnly(scenario.installation / path);
    expectRestoredAfter([&] {
        for (const std::string& path : newPaths)
            setReadOnly(scenario.workFolder / "staging" / path);
        fs::remove(scenario.workFolder / "staging" / last);
    });
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

TEST_F(InstallationFaultTest, EveryStagedFileCanVanish) {
    for (const std::string& path : newPaths) {
        SCOPED_TRACE(path);
        expectRestoredAfter([&] { fs::remove(scenario.workFolder / "staging" / path); });
    }
}

TEST_F(InstallationFaultTest, EveryStagedFileCanBeInUse) {
    for (const std::string& path : newPaths) {
        SCOPED_TRACE(path);
        std::optional<FileLock> lock;
        expectRestoredAfter([&] { lock.emplace(std::vector{scenario.workFolder / "staging" / path}); });
    }
}

/// The same for the way back. The release that is offered has a game that cannot be started, and the updater is stopped
/// between its installation and the way back.
class WayBackTest : public InstallationFaultTest {
protected:
    WayBackTest() {
        broken = sampleRelease42();
        broken["Vorthmere.exe"] = {"no program"};
        scenario.release = publish(scenario.release.folder, broken, 42);
    }

    /// Runs the updater, prepares a fault between the two installations, and expects that the way back fails and leaves
    /// the new release whole. The moment in between is short: a run in which it was missed is repeated.
    ///
    /// @param differences what the fault itself changes in the new release
    void expectNewReleaseAfter(const std::function<void()>& prepare, const std::string& differences = "") {
        constexpr int kAttempts = 50;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            reset();
            ChildProcess updater = startUpdater(relaunching());
            if (!stopBetweenTheInstallations(updater)) continue;
            prepare();
            updater.resume();
            EXPECT_EQ(updater.wait(Milliseconds(120'000)).exitCode, 28);
            finishRun();
            EXPECT_EQ(scenario.differencesFrom(broken), differences);
            return;
        }
        FAIL() << "the moment between the two installations was never met";
    }

    UpdaterCommand relaunching() const {
        UpdaterCommand command = this->command(Source::incremental);
        command.relaunch = true;
        return command;
    }

    ReleaseFiles broken;

private:
    void reset() {
        fs::remove_all(scenario.workFolder);
        for (const std::string& path : scenario.managedPaths)
            fs::remove(scenario.installation / path);
        layOut(sampleRelease41(), scenario.installation);
    }

    /// True when the updater stands still, the new release is installed and nothing of it has moved back.
    bool stopBetweenTheInstallations(ChildProcess& updater) {
        FolderWatch watch;
        watch.add(scenario.installation, IN_MOVED_TO);
        std::optional<FolderEvent> event;
        while ((event = watch.next(Milliseconds(60'000))) && event->path != scenario.installation / newPaths.back()) {
        }
        updater.suspend();
        if (event && scenario.differencesFrom(broken).empty()) return true;
        updater.resume();
        updater.wait(Milliseconds(120'000));
        finishRun();
        return false;
    }
};

TEST_F(WayBackTest, EveryNewFileCanBeInUse) {
    for (const std::string& path : newPaths) {
        SCOPED_TRACE(path);
        std::optional<FileLock> lock;
        expectNewReleaseAfter([&] { lock.emplace(std::vector{scenario.installation / path}); });
        // Nothing of the previous release had moved yet.
        EXPECT_EQ(filesIn("backup"), std::set<std::string>(oldPaths.begin(), oldPaths.end()));
    }
}

TEST_F(WayBackTest, AFolderCanBeInThePlaceOfEveryDroppedFile) {
    for (const std::string& path : oldPaths) {
        if (broken.contains(path)) continue;
        SCOPED_TRACE(path);
        expectNewReleaseAfter([&] { fs::create_directories(scenario.installation / path); },
                              "  left over: " + path + "\n");
        EXPECT_EQ(filesIn("backup"), std::set<std::string>(oldPaths.begin(), oldPaths.end()));
        fs::remove(scenario.installation / path);
    }
}

// The rollback of the way back removes what it has moved in, and that is the previous release: what stood before the
// missing file in the list of the previous release is gone afterwards.
TEST_F(WayBackTest, EveryFileOfTheBackupCanVanish) {
    for (auto missing = oldPaths.begin(); missing != oldPaths.end(); ++missing) {
        SCOPED_TRACE(*missing);
        expectNewReleaseAfter([&] { fs::remove(scenario.workFolder / "backup" / *missing); });
        EXPECT_EQ(filesIn("backup"), std::set<std::string>(missing + 1, oldPaths.end()));
    }
}

TEST_F(WayBackTest, EveryFileOfTheBackupCanBeInUse) {
    for (auto used = oldPaths.begin(); used != oldPaths.end(); ++used) {
        SCOPED_TRACE(*used);
        std::optional<FileLock> lock;
        expectNewReleaseAfter([&] { lock.emplace(std::vector{scenario.workFolder / "backup" / *used}); });
        EXPECT_EQ(filesIn("backup"), std::set<std::string>(used, oldPaths.end()));
    }
}

}  // namespace
}  // namespace vorthmere::end_to_end
