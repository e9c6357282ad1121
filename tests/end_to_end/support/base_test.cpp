#include "tests/end_to_end/support/base_test.h"

#include <algorithm>
#include <stdexcept>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"
#include "tests/end_to_end/support/sample_release.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

constexpr Milliseconds kRunLimit{120'000};
constexpr Milliseconds kLockLimit{60'000};

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

EndToEndTest::EndToEndTest(const std::string& installationName)
    : scenario(installationName), updater_(scenario.installation / update::kUpdaterExecutableName) {}

EndToEndTest::~EndToEndTest() = default;

void EndToEndTest::TearDown() {
    if (IsSkipped()) return;
    EXPECT_TRUE(protectedBefore_) << "the test never started the updater";
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
    protectedBefore_ = scenario.takeProtectedSnapshot();
    ProcessOptions options;
    options.currentFolder = currentFolder_;
    options.outputFile = "/dev/null";
    return ChildProcess(wineCommand(updater_, arguments), options);
}

void EndToEndTest::finishRun() {
    if (!protectedBefore_) return;
    EXPECT_EQ(describeDifferences(*protectedBefore_, scenario.takeProtectedSnapshot()), "")
        << "the updater touched what is not its business";
}

int EndToEndTest::runUpdater(const UpdaterCommand& command) {
    ChildProcess updater = startUpdater(command);
    const ProcessEnd end = updater.wait(kRunLimit);
    EXPECT_FALSE(end.killed) << "the updater did not end in time, or crashed";
    lastDuration_ = end.duration;
    finishRun();
    return end.exitCode;
}

void EndToEndTest::expectRelease41() const {
    expectInstalled(sampleRelease41());
}

void EndToEndTest::expectRelease42() const {
    expectInstalled(sampleRelease42());
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

FileLock::FileLock(const std::vector<fs::path>& files) : probe_(wineCommand(probeProgram(), windowsPaths(files))) {
    if (probe_.readLine(kLockLimit) != "locked") throw std::runtime_error("the files could not be locked");
}

}  // namespace vorthmere::end_to_end
