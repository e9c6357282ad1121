#include "tests/end_to_end/support/killed_fixture.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>
#include <vector>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

constexpr Milliseconds kRunLimit{120'000};
constexpr Milliseconds kToolLimit{5'000};
constexpr std::uint32_t kMoves = IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t kAnything =
    kMoves | IN_OPEN | IN_CREATE | IN_DELETE | IN_MODIFY | IN_CLOSE_WRITE | IN_CLOSE_NOWRITE;

bool holds(const fs::path& file, const std::string& content) {
    return fs::is_regular_file(fs::symlink_status(file)) && readFile(file) == content;
}

/// The processes with this text on their command lines.
std::vector<pid_t> processesThatName(const std::string& text) {
    std::vector<pid_t> found;
    for (const fs::directory_entry& process : fs::directory_iterator("/proc")) {
        const std::string id = process.path().filename().string();
        if (id.find_first_not_of("0123456789") != std::string::npos) continue;
        std::ifstream file(process.path() / "cmdline", std::ios::binary);
        // If the process ends meanwhile, reading fails. This takes that for the end of the words.
        std::ostringstream words;
        words << file.rdbuf();
        if (words.str().find(text) != std::string::npos) found.push_back(std::stoi(id));
    }
    return found;
}

}  // namespace

// The installation's own updater may have moved anywhere when it was killed.
KilledTest::KilledTest() {
    useUpdater(updaterProgram());
}

void KilledTest::killRuns(Source source, Clock clock, int runs) {
    const int events = countEvents(source, clock);
    ASSERT_GT(events, runs) << "too few moments to tell apart";
    int killed = 0;
    for (int run = 0; run < runs; ++run) {
        scenario.reset();
        const int moment = 1 + run * (events - 1) / runs;
        SCOPED_TRACE("killed behind event " + std::to_string(moment) + " of " + std::to_string(events));
        const TreeSnapshot before = scenario.takeInstallationSnapshot();
        if (!killAt(source, clock, moment)) continue;
        ++killed;
        expectNothingLost(before);
        if (run % 2 == 0)
            expectNextRunCompletes(source);
        else
            expectRecovery(source);
    }
    // On a busy machine the last moments may come after the end of a run.
    EXPECT_GE(killed, runs - runs / 5);
    EXPECT_GE(interrupted_, clock == Clock::installation ? runs / 2 : 0) << "in the middle of the installation";
    RecordProperty("killed", killed);
    RecordProperty("interrupted", interrupted_);
}

void KilledTest::watchWith(FolderWatch& watch, Clock clock) const {
    watch.addTree(scenario.installation, clock == Clock::run ? kAnything : kMoves);
}

/// Takes one event, if there is one, and watches new folders, too.
bool KilledTest::takeEvent(FolderWatch& watch, Clock clock) {
    const std::optional<FolderEvent> event = watch.next(Milliseconds(1));
    if (!event) return false;
    std::error_code gone;
    if (clock == Clock::run && (event->what & IN_CREATE) != 0 && (event->what & IN_ISDIR) != 0 &&
        fs::is_directory(event->path, gone))
        watch.add(event->path, kAnything);
    return true;
}

int KilledTest::countEvents(Source source, Clock clock) {
    FolderWatch watch;
    watchWith(watch, clock);
    ChildProcess updater = startUpdater(command(source));
    int events = 0;
    bool ended = false;
    while (!ended) {
        ended = updater.hasEnded(Milliseconds(0));
        while (takeEvent(watch, clock))
            ++events;
    }
    EXPECT_EQ(updater.wait(kRunLimit).exitCode, 0);
    finishRun();
    return events;
}

/// @return false when the run ended before
bool KilledTest::killAt(Source source, Clock clock, int moment) {
    FolderWatch watch;
    watchWith(watch, clock);
    ChildProcess updater = startUpdater(command(source));
    int events = 0;
    while (events < moment && !updater.hasEnded(Milliseconds(0)))
        if (takeEvent(watch, clock)) ++events;
    updater.kill();
    const bool killed = updater.wait(kRunLimit).killed;
    waitUntilQuiet();
    finishRun();
    return killed;
}

/// The archive tool may outlive the updater, and Wine's server may still be busy with the last request of either. The
/// server takes requests in turn, so it has finished those when it has served another program. A tool that was just
/// being created never ends by itself and has to be killed as well.
void KilledTest::waitUntilQuiet() const {
    const auto limit = std::chrono::steady_clock::now() + kToolLimit;
    bool done = false;
    while (!done) {
        const std::vector<pid_t> tools = processesThatName(scenario.root.filename().string());
        done = tools.empty();
        if (std::chrono::steady_clock::now() > limit)
            for (const pid_t tool : tools)
                kill(tool, SIGKILL);
        FileLock({});
    }
}

void KilledTest::expectNothingLost(const TreeSnapshot& before) {
    const fs::path& installation = scenario.installation;
    const fs::path backup = scenario.workFolder / "backup";
    const fs::path staging = scenario.workFolder / "staging";
    if (!fs::exists(backup)) {
        expectInstallation(before);
        return;
    }
    if (!scenario.differencesFrom(scenario.installed).empty() && !scenario.differencesFrom(scenario.offered).empty())
        ++interrupted_;
    for (const auto& [path, file] : scenario.installed)
        EXPECT_NE(holds(installation / path, file.content) && !fs::exists(backup / path),
                  holds(backup / path, file.content))
            << path << " of the previous release";
    for (const auto& [path, file] : scenario.offered)
        EXPECT_TRUE(holds(staging / path, file.content) || holds(installation / path, file.content))
            << path << " of the new release";
    for (const std::string& path : scenario.managedPaths)
        EXPECT_FALSE(fs::exists(backup / path) && fs::exists(installation / path) && fs::exists(staging / path))
            << path << " is there twice";
}

void KilledTest::expectNextRunCompletes(Source source) {
    const int code = runUpdater(source);
    if (code == 10) {
        // Without the game, the updater or the list, the updater refuses the folder and touches nothing in it. The
        // recovery is still possible.
        expectRecovery(source);
        return;
    }
    EXPECT_EQ(code, 0);
    expectRelease42();
}

/// Copies the backup over the installation, which makes the previous release whole, and updates again.
void KilledTest::expectRecovery(Source source) {
    const fs::path backup = scenario.workFolder / "backup";
    if (fs::exists(backup))
        fs::copy(backup, scenario.installation, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    for (const auto& [path, file] : scenario.installed)
        EXPECT_TRUE(holds(scenario.installation / path, file.content)) << path << " after the recovery";
    EXPECT_EQ(runUpdater(source), 0);
    expectRelease42();
}

}  // namespace vorthmere::end_to_end
