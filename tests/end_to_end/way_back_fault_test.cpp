// The new game cannot be started, and every single step of the rollback to the previous release fails once. The test
// stops the updater between the two installations and prepares the fault.

#include <functional>
#include <iterator>
#include <set>
#include <stdexcept>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/installation_fault_fixture.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

constexpr int kWayBackFailed = 28;
constexpr Milliseconds kLimit{120'000};

class WayBackFaultTest : public InstallationFaultTest {
protected:
    /// Expects that the rollback fails after a fault and leaves the new release whole. The moment between the
    /// installations is short, so a run that missed it is repeated.
    ///
    /// @param prepare          makes the fault
    /// @param differences      what the fault itself changes in the new release
    void expectNewReleaseAfter(const std::function<void()>& prepare, const std::string& differences = "") {
        constexpr int kAttempts = 50;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            scenario.reset();
            ChildProcess updater = startUpdater(relaunching());
            const bool prepared = stopBetweenTheInstallations(updater) && succeeds(prepare);
            updater.resume();
            const int code = updater.wait(kLimit).exitCode;
            finishRun();
            if (!prepared) continue;
            EXPECT_EQ(code, kWayBackFailed);
            EXPECT_EQ(scenario.differencesFrom(scenario.offered), differences);
            return;
        }
        FAIL() << "the moment between the two installations was never met";
    }

    [[nodiscard]] std::set<std::string> pathsFrom(std::vector<std::string>::const_iterator first) const {
        return {first, oldPaths.end()};
    }

private:
    UpdaterCommand relaunching() const {
        UpdaterCommand command = this->command(Source::incremental);
        command.relaunch = true;
        return command;
    }

    /// Stops the updater. True when the new release is installed then and nothing of it has moved back.
    bool stopBetweenTheInstallations(ChildProcess& updater) {
        FolderWatch watch;
        watch.add(scenario.installation, IN_MOVED_TO);
        std::optional<FolderEvent> event;
        while ((event = watch.next(kLimit)) && event->path != scenario.installation / newPaths.back()) {
        }
        updater.suspend();
        return event && scenario.differencesFrom(scenario.offered).empty();
    }

    /// The stopped updater may hold the file that the test is to lock: the game that it tries to start.
    static bool succeeds(const std::function<void()>& prepare) {
        try {
            prepare();
            return true;
        } catch (const std::runtime_error&) {
            return false;
        }
    }
};

TEST_F(WayBackFaultTest, EveryNewFileCanBeInUse) {
    for (const std::string& path : newPaths) {
        SCOPED_TRACE(path);
        std::optional<FileLock> lock;
        expectNewReleaseAfter([&] { lock.emplace(std::vector{scenario.installation / path}); });
        EXPECT_EQ(filesIn("backup"), pathsFrom(oldPaths.begin())) << "nothing of the previous release had moved yet";
    }
}

TEST_F(WayBackFaultTest, AFolderCanBeInThePlaceOfEveryDroppedFile) {
    for (const std::string& path : oldPaths) {
        if (scenario.offered.contains(path)) continue;
        SCOPED_TRACE(path);
        expectNewReleaseAfter([&] { fs::create_directories(scenario.installation / path); },
                              "  left over: " + path + "\n");
        EXPECT_EQ(filesIn("backup"), pathsFrom(oldPaths.begin()));
    }
}

TEST_F(WayBackFaultTest, AFileCanBeInThePlaceOfADroppedFolder) {
    const fs::path folder = scenario.installation / "data/old";
    expectNewReleaseAfter([&] {
        fs::remove_all(folder);
        writeFile(folder, "a file");
        recordProtectedAgain();
    });
    EXPECT_EQ(readFile(folder), "a file");
    fs::remove(folder);
}

// A rollback that fails removes the previous release's files that it has already moved back. So the files before the
// fault in the list are gone afterwards.
TEST_F(WayBackFaultTest, EveryFileOfTheBackupCanVanishAmongReadOnlyFiles) {
    for (auto missing = oldPaths.begin(); missing != oldPaths.end(); ++missing) {
        SCOPED_TRACE(*missing);
        expectNewReleaseAfter([&] {
            for (const std::string& path : oldPaths)
                setReadOnly(scenario.workFolder / "backup" / path);
            for (const std::string& path : newPaths)
                setReadOnly(scenario.installation / path);
            fs::remove(scenario.workFolder / "backup" / *missing);
        });
        EXPECT_EQ(filesIn("backup"), pathsFrom(std::next(missing)));
    }
}

TEST_F(WayBackFaultTest, EveryFileOfTheBackupCanBeInUse) {
    for (auto used = oldPaths.begin(); used != oldPaths.end(); ++used) {
        SCOPED_TRACE(*used);
        std::optional<FileLock> lock;
        expectNewReleaseAfter([&] { lock.emplace(std::vector{scenario.workFolder / "backup" / *used}); });
        EXPECT_EQ(filesIn("backup"), pathsFrom(used));
    }
}

}  // namespace
}  // namespace vorthmere::end_to_end
