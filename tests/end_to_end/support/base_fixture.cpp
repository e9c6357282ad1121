#include "tests/end_to_end/support/base_fixture.h"

#include <algorithm>
#include <stdexcept>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/folder_watch.h"
#include "tests/end_to_end/support/programs.h"
#include "tests/end_to_end/support/sample_release.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

constexpr Milliseconds kRunLimit{120'000};
constexpr Milliseconds kProbeLimit{60'000};

std::vector<std::string> windowsPaths(const std::vector<fs::path>& files) {
    std::vector<std::string> names{"lock"};
    std::transform(files.begin(), files.end(), std::back_inserter(names), windowsPath);
    return names;
}

}  // namespace

std::vector<std::string> UpdaterCommand::arguments() const {
    std::vector<std::string> words{"--apply"};
    const auto add = [&words](const char* option, const std::string& value) {
        if (value.empty()) return;
        words.emplace_back(option);
        words.push_back(value);
    };
    add("--install", install);
    add("--current", current);
    add("--parent", parent);
    add("--manifest-file", manifestFile);
    add("--package-file", packageFile);
    add("--inventory-file", inventoryFile);
    add("--object-directory", objectDirectory);
    if (!relaunch) words.emplace_back("--no-relaunch");
    if (!window) words.emplace_back("--test-no-ui");
    return words;
}

EndToEndTest::EndToEndTest(const ScenarioOptions& options)
    : scenario(options), updater_(scenario.installation / update::kUpdaterExecutableName) {}

EndToEndTest::~EndToEndTest() = default;

void EndToEndTest::TearDown() {
    if (IsSkipped()) return;
    EXPECT_TRUE(started_) << "the test never started the updater";
    finishRun();
}

UpdaterCommand EndToEndTest::command(Source source) const {
    UpdaterCommand command;
    command.install = windowsPath(scenario.installation);
    if (source == Source::channel) return command;
    command.manifestFile = windowsPath(scenario.release.manifest);
    command.packageFile = windowsPath(scenario.release.package);
    if (source == Source::completePackage) return command;
    command.inventoryFile = windowsPath(scenario.release.inventory);
    command.objectDirectory = windowsPath(scenario.release.folder);
    return command;
}

ChildProcess EndToEndTest::startUpdater(const std::vector<std::string>& arguments) {
    beforeStart();
    ProcessOptions options;
    options.environment = environment_;
    options.environment.push_back(gameReportVariable());
    options.currentFolder = currentFolder_;
    options.outputFile = "/dev/null";
    return ChildProcess(wineCommand(updater_, arguments), options);
}

ChildProcess EndToEndTest::startThroughProbe(const std::string& subcommand, const std::vector<std::string>& arguments,
                                             ProcessOptions options) {
    beforeStart();
    options.environment.insert(options.environment.end(), environment_.begin(), environment_.end());
    options.environment.push_back(gameReportVariable());
    std::vector<std::string> words{subcommand, windowsPath(updater_)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return ChildProcess(wineCommand(probeProgram(), words), options);
}

void EndToEndTest::beforeStart() {
    finishRun();
    started_ = true;
    protectedBefore_ = scenario.takeProtectedSnapshot();
}

std::string EndToEndTest::gameReportVariable() const {
    return "KVN_GAME_REPORT=" + windowsPath(scenario.gameReport);
}

void EndToEndTest::recordProtectedAgain() {
    protectedBefore_ = scenario.takeProtectedSnapshot();
}

void EndToEndTest::finishRun() {
    if (!protectedBefore_) return;
    EXPECT_EQ(describeDifferences(*protectedBefore_, scenario.takeProtectedSnapshot()), "")
        << "the updater touched what is not its business";
    protectedBefore_.reset();
}

int EndToEndTest::runUpdater(const UpdaterCommand& command) {
    ChildProcess updater = startUpdater(command);
    const ProcessEnd end = updater.wait(kRunLimit);
    EXPECT_FALSE(end.killed) << "the updater did not end in time, or crashed";
    lastDuration_ = end.duration;
    finishRun();
    return end.exitCode;
}

int EndToEndTest::runUpdater(UpdaterCommand command, const std::function<void()>& whileItWaits) {
    OpenGame game;
    command.parent = game.processId();
    FolderWatch watch;
    watch.add(scenario.installation, IN_CREATE | IN_CLOSE_NOWRITE);
    ChildProcess updater = startUpdater(command);
    if (waitUntilReadyToInstall(watch))
        whileItWaits();
    else
        ADD_FAILURE() << "the updater never waited for the game";
    game.close();
    const ProcessEnd end = updater.wait(kRunLimit);
    EXPECT_FALSE(end.killed) << "the updater did not end in time, or crashed";
    lastDuration_ = end.duration;
    finishRun();
    return end.exitCode;
}

RunOutcome EndToEndTest::runInWindow(UpdaterCommand command) {
    command.window = true;
    ChildProcess probe = startThroughProbe("outcome", command.arguments());
    EXPECT_FALSE(probe.wait(kRunLimit).killed) << "the updater did not end in time";
    finishRun();
    return readOutcome(probe);
}

// The updater writes the transfer report when the release is staged, and reads the installed list right before it waits
// for the game. On a busy machine it may write the report before the report's folder is watched. So an updater that has
// written the report and touches nothing any more is waiting, too.
bool EndToEndTest::waitUntilReadyToInstall(FolderWatch& watch) const {
    constexpr Milliseconds quiet{5'000};
    const fs::path report = scenario.workFolder / "transfer.txt";
    bool staged = false;
    for (Milliseconds waited{0}; waited < kRunLimit;) {
        const std::optional<FolderEvent> event = watch.next(quiet);
        if (!event) {
            if (fs::exists(report)) return true;
            waited += quiet;
            continue;
        }
        if (event->path == scenario.workFolder && (event->what & IN_CREATE) != 0)
            watch.add(scenario.workFolder, IN_CLOSE_WRITE);
        if (event->path == report) staged = true;
        if (staged && event->path == scenario.installation / update::kManagedFileListName) return true;
    }
    return false;
}

void EndToEndTest::expectRelease41() const {
    expectInstalled(scenario.installed);
}

void EndToEndTest::expectRelease42() const {
    expectInstalled(scenario.offered);
}

void EndToEndTest::expectInstalled(const ReleaseFiles& files) const {
    EXPECT_EQ(scenario.differencesFrom(files), "");
}

void EndToEndTest::expectInstallation(const TreeSnapshot& before) const {
    EXPECT_EQ(describeDifferences(filesOnly(before), filesOnly(scenario.takeInstallationSnapshot())), "");
}

std::string EndToEndTest::transferReport() const {
    const fs::path report = scenario.workFolder / "transfer.txt";
    return fs::exists(report) ? readFile(report) : "";
}

std::vector<std::string> EndToEndTest::workFolderContent() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(scenario.workFolder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

OpenGame::OpenGame() : probe_(wineCommand(probeProgram(), {"idle"})), processId_(probe_.readLine(kProbeLimit)) {
    if (processId_.empty()) throw std::runtime_error("the game could not be started");
}

void OpenGame::close() {
    probe_.closeInput();
    if (probe_.wait(kProbeLimit).killed) throw std::runtime_error("the game did not end");
}

FileLock::FileLock(const std::vector<fs::path>& files) : probe_(wineCommand(probeProgram(), windowsPaths(files))) {
    if (probe_.readLine(kProbeLimit) != "locked") throw std::runtime_error("the files could not be locked");
}

void FileLock::release() {
    probe_.closeInput();
    if (probe_.wait(kProbeLimit).killed) throw std::runtime_error("the files could not be released");
}

}  // namespace vorthmere::end_to_end
