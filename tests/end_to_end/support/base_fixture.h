#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/end_to_end/support/child_process.h"
#include "tests/end_to_end/support/folder_watch.h"
#include "tests/end_to_end/support/run_outcome.h"
#include "tests/end_to_end/support/scenario.h"

namespace vorthmere::end_to_end {

/// The updater's command line. Empty values are not given.
struct UpdaterCommand {
    std::string install;
    std::string current = "41";
    std::string parent;
    std::string manifestFile;
    std::string packageFile;
    std::string inventoryFile;
    std::string objectDirectory;
    bool relaunch = false;  ///< else --no-relaunch
    bool window = false;    ///< else --test-no-ui

    [[nodiscard]] std::vector<std::string> arguments() const;
};

/// How a test wants the updater to obtain the release.
enum class Source {
    incremental,      ///< all from local files
    completePackage,  ///< the same without inventory and objects
    channel,          ///< no local files: from the release channel
};

/// The base of every end-to-end test: a scenario, and a run of the real updater on it.
///
/// Before each start of the updater it records the player's files and everything outside the installation. At the end
/// of that run, or of the test, they must be the same. A test that never started the updater fails.
class EndToEndTest : public testing::Test {
protected:
    explicit EndToEndTest(const ScenarioOptions& options = {});
    ~EndToEndTest() override;

    void TearDown() override;

    /// The command line for this test's installation and release.
    [[nodiscard]] UpdaterCommand command(Source source) const;

    /// Runs the updater that lies in the installation to its end.
    ///
    /// @return its exit code; a run over the time limit is killed and fails the test
    int runUpdater(const UpdaterCommand& command);
    int runUpdater(Source source) {
        return runUpdater(command(source));
    }

    /// Runs the updater in its window to its end.
    RunOutcome runInWindow(UpdaterCommand command);

    /// Starts the updater; the caller waits for it or kills it, and calls finishRun() then.
    [[nodiscard]] ChildProcess startUpdater(const std::vector<std::string>& arguments);
    [[nodiscard]] ChildProcess startUpdater(const UpdaterCommand& updaterCommand) {
        return startUpdater(updaterCommand.arguments());
    }

    /// Runs the updater to its end with an open game. When everything is ready to be installed, calls `whileItWaits`
    /// and closes the game.
    int runUpdater(UpdaterCommand command, const std::function<void()>& whileItWaits);

    /// Starts the updater through a subcommand of the probe, which gets the updater and its arguments. The output is a
    /// pipe unless `options` say otherwise. The caller ends the run as with startUpdater().
    [[nodiscard]] ChildProcess startThroughProbe(const std::string& subcommand,
                                                 const std::vector<std::string>& arguments,
                                                 ProcessOptions options = {});

    /// Expects everything that no run may touch to be as it was before the start.
    void finishRun();

    /// Records anew what no run may touch. For a test that changes some of it during a run.
    void recordProtectedAgain();

    /// Runs this program instead of the installation's own KVNUpdater.exe.
    void useUpdater(std::filesystem::path program) {
        updater_ = std::move(program);
    }

    /// The folder in which the updater is started; relative paths on its command line start here.
    void setCurrentFolder(std::filesystem::path folder) {
        currentFolder_ = std::move(folder);
    }

    /// Variables for the updater, "NAME=value".
    void useEnvironment(std::vector<std::string> variables) {
        environment_ = std::move(variables);
    }

    void expectRelease41() const;
    void expectRelease42() const;
    void expectInstalled(const ReleaseFiles& files) const;

    /// Expects that nothing in the installation outside the work folder differs; folders that have become empty or are
    /// new do not count.
    void expectInstallation(const TreeSnapshot& before) const;

    /// The transfer report, or "" when there is none.
    [[nodiscard]] std::string transferReport() const;

    /// The names in the work folder, in order.
    [[nodiscard]] std::vector<std::string> workFolderContent() const;

    /// How long the last run took.
    [[nodiscard]] Milliseconds lastDuration() const {
        return lastDuration_;
    }

    Scenario scenario;

private:
    void beforeStart();
    [[nodiscard]] std::string gameReportVariable() const;

    [[nodiscard]] bool waitUntilReadyToInstall(FolderWatch& watch) const;

    std::filesystem::path updater_;
    std::filesystem::path currentFolder_;
    std::vector<std::string> environment_;
    std::optional<TreeSnapshot> protectedBefore_;  ///< while a run has not been finished
    bool started_ = false;
    Milliseconds lastDuration_{0};
};

/// A Windows process that stands for the game and does nothing until it is told to end.
class OpenGame {
public:
    OpenGame();

    /// Its process id, as Windows programs know it.
    [[nodiscard]] const std::string& processId() const {
        return processId_;
    }

    /// Ends it and waits until it is gone.
    void close();

private:
    ChildProcess probe_;
    std::string processId_;
};

/// Holds files of the installation open without sharing, as a running program or a virus scanner would.
class FileLock {
public:
    explicit FileLock(const std::vector<std::filesystem::path>& files);

    /// Closes the files.
    void release();

private:
    ChildProcess probe_;
};

}  // namespace vorthmere::end_to_end
