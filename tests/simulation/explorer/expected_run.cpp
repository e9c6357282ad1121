#include "tests/simulation/explorer/expected_run.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "tests/simulation/digests.h"
#include "update/release_channel.h"
#include "update/text.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::string_view kInvariant = "10 undisturbed";
constexpr std::string_view kNoCache = "Cache-Control: no-cache\r\n";

using Lines = std::vector<std::string>;

std::string lineOf(std::wstring_view text, std::uint64_t percent) {
    return narrow(std::wstring(text)) + " " + std::to_string(percent);
}

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// The run as it should be, made up from the two releases and the way.
class ExpectedRun {
public:
    explicit ExpectedRun(const Setting& setting)
        : setting_(setting),
          isOverHttps_(setting.way == Way::incrementalOverHttps || setting.way == Way::completeOverHttps),
          packageBytes_(offerOf(setting.releases, setting.way).package.size()) {
        begin();
    }

    Lines steps;
    Lines requests;
    Lines programs;
    std::string report;  ///< empty: none is left, or an earlier one

private:
    void step(const Step& step) {
        steps.push_back(lineOf(step.text, step.percent));
    }
    void request(std::string address) {
        if (isOverHttps_) requests.push_back(std::move(address));
    }

    void begin() {
        step(timetable::checkingChannel);
        request(channelAddress(kManifestName));
        if (isCurrent(setting_.way)) {
            step(timetable::alreadyCurrent);
            return relaunch();
        }
        if (setting_.way == Way::linkedWorkFolder) return;
        if (!stageIncrementally() && !stagePackage()) return;
        step(timetable::waitingForGame);
        if (setting_.arguments.parentProcessId != 0)
            programs.push_back("openProcess " + std::to_string(setting_.arguments.parentProcessId) + ", ");
        const bool isRunning = setting_.arguments.parentProcessId != 0 && setting_.way != Way::exitedGame;
        if (isRunning) programs.push_back("waitForEnd " + game() + ", 120000 ms");
        if (setting_.way == Way::lastingGame) return;
        step(timetable::installing);
        if (setting_.way == Way::linkedFolder) return;
        step(timetable::launchingGame);
        relaunch();
        if (setting_.way != Way::relaunchFails) step(timetable::done);
    }

    static std::string game() {
        return std::string(place::kInstallation) + "/" + std::string(kGameExecutableName);
    }

    void relaunch() {
        if (!setting_.arguments.noRelaunch)
            programs.push_back("startProgram " + inQuotes(game()) + ", " + std::string(place::kInstallation));
    }

    /// @param isSilenced it prints too much and is ended
    void runTool(const std::string& arguments, bool isSilenced) {
        const std::string tool = "C:/Windows/System32/tar.exe";
        programs.push_back("startCaptured " + inQuotes(tool) + arguments + ", " + std::string(place::kWorkFolder));
        programs.push_back((isSilenced ? "endProcess " + tool + ", 9" : "waitForEnd " + tool + ", 4294967295 ms"));
    }

    std::string packageAddress() const {
        return std::string(kDownloadBaseUrl) + "KVN-release-" + std::to_string(setting_.releases.offered.number) +
               ".zip";
    }

    bool isInstalled(const ReleaseFile& file) const {
        const auto found = setting_.before.find(treeKeyOf(place::kInstallation) + "/" + treeKeyOf(file.path));
        return found != setting_.before.end() && found->second.isFile() && *found->second.content == file.content;
    }

    bool stageIncrementally() {
        if (hasNoInventory(setting_.way)) return false;
        request(packageAddress() + ".files");
        step(timetable::checkingInstalledFiles);
        std::vector<const ReleaseFile*> changed;
        std::uint64_t bytes = 0;
        for (const ReleaseFile& file : setting_.releases.offered.files)
            if (!isInstalled(file)) {
                changed.push_back(&file);
                bytes += file.content.size();
            }
        if (setting_.way == Way::linkedFolder || bytes >= packageBytes_ || !fetch(changed, bytes)) return false;
        step(timetable::changedFilesVerified);
        report =
            "mode=incremental\r\nreused=" + std::to_string(setting_.releases.offered.files.size() - changed.size()) +
            "\r\ndownloaded=" + std::to_string(changed.size()) + "\r\nbytes=" + std::to_string(bytes) + "\r\n";
        return true;
    }

    bool fetch(const std::vector<const ReleaseFile*>& changed, std::uint64_t bytes) {
        constexpr StepRange range = timetable::fetchingChangedFiles;
        std::uint64_t done = 0;
        std::size_t number = 0;
        for (const ReleaseFile* file : changed) {
            const std::wstring which = L" (" + std::to_wstring(++number) + L" of " + std::to_wstring(changed.size());
            steps.push_back(lineOf(std::wstring(range.text) + which + L")...",
                                   range.first + (bytes == 0 ? 0 : done * range.span / bytes)));
            const std::string address = channelAddress(objectName(sha256TextOf(file->content)));
            request(address);
            if (isOverHttps_ && !setting_.machine.internet.answers.contains(address)) return false;
            done += file->content.size();
            if (isOverHttps_ && !file->content.empty()) {
                const std::uint64_t percent = done * kWholePercent / bytes;
                steps.push_back(lineOf(std::wstring(range.text) + L"... " + std::to_wstring(percent) + L"%",
                                       range.first + percent * range.span / kWholePercent));
            }
            if (setting_.way == Way::damagedObject && file->path == kGameExecutableName) return false;
        }
        return true;
    }

    void downloadPackage() {
        constexpr StepRange range = timetable::downloadingPackage;
        const std::uint64_t chunk = kPackageChunkBytes;
        steps.push_back(lineOf(std::wstring(timetable::downloadingRelease) + L"0.9.3 alpha...", range.first));
        request(packageAddress());
        for (std::uint64_t received = 0; received < packageBytes_;) {
            received = std::min(received + chunk, packageBytes_);
            const std::uint64_t percent = received * kWholePercent / packageBytes_;
            steps.push_back(lineOf(std::wstring(range.text) + L"... " + std::to_wstring(percent) + L"%",
                                   range.first + percent * range.span / kWholePercent));
        }
    }

    bool stagePackage() {
        const std::string package = inQuotes(std::string(place::kWorkFolder) + "/package.zip");
        step(timetable::preparingCompletePackage);
        if (isOverHttps_)
            downloadPackage();
        else
            step(timetable::copyingLocalPackage);
        if (setting_.way == Way::longPackage) return false;
        step(timetable::verifyingPackage);
        if (setting_.way == Way::damagedPackage || setting_.way == Way::noArchiveTool) return false;
        step(timetable::inspectingPackage);
        runTool(" \"-tf\" " + package, setting_.way == Way::talkativeTool);
        if (setting_.way == Way::talkativeTool || setting_.way == Way::escapingFile) return false;
        step(timetable::unpackingPackage);
        runTool(" \"-xf\" " + package + " \"-C\" " + inQuotes(place::kStaging), false);
        report = "mode=full\r\nbytes=" + std::to_string(packageBytes_) + "\r\n";
        return setting_.way != Way::unlistedFile && setting_.way != Way::lackingFile;
    }

    const Setting& setting_;
    bool isOverHttps_;
    std::uint64_t packageBytes_;
};

/// What the run was.
Lines stepsOf(const Outcome& outcome) {
    Lines steps;
    for (const ReportedStep& reported : outcome.steps)
        steps.push_back(lineOf(reported.text, reported.percent));
    return steps;
}

Lines requestsOf(const Outcome& outcome) {
    Lines requests;
    for (const SentRequest& request : outcome.machine.internet.sent) {
        const bool isPlain = request.headers != Lines{std::string(kNoCache)} || request.followsRedirects;
        requests.push_back(request.address + (isPlain ? " without its settings" : ""));
    }
    return requests;
}

Lines programsOf(const Outcome& outcome) {
    Lines programs;
    for (const Call& call : outcome.calls)
        if (call.operation == Operation::startCaptured || call.operation == Operation::startProgram ||
            call.operation == Operation::openProcess || call.operation == Operation::waitForEnd ||
            call.operation == Operation::endProcess)
            programs.push_back(std::string(nameOf(call.operation)) + " " + call.subject + ", " + call.second);
    return programs;
}

std::string reportOf(const Outcome& outcome) {
    const auto found = outcome.after.find(treeKeyOf(place::kWorkFolder) + "/transfer.txt");
    return found != outcome.after.end() && found->second.isFile() ? *found->second.content : std::string();
}

/// What each of these calls is to be given.
struct ExpectedCall {
    Operation operation;
    std::string_view subject;  ///< empty: any
    std::string_view second;   ///< empty: any
};

constexpr ExpectedCall kExpectedCalls[] = {
    {Operation::openSession, "KelvaneAlphaUpdater/1.0", ""},
    {Operation::setTimeouts, "", "2500 2500 3000 5000 ms"},
};

class Comparison {
public:
    void compare(std::string_view what, const Lines& expected, const Lines& actual) {
        const auto [left, right] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
        if (left == expected.end() && right == actual.end()) return;
        broken(std::string(what) + " " + std::to_string(std::distance(expected.begin(), left)) + " should be " +
               (left == expected.end() ? "none" : *left) + ", not " + (right == actual.end() ? "none" : *right));
    }

    void broken(std::string what) {
        breaches.push_back({std::string(kInvariant), "", std::move(what)});
    }

    std::vector<Breach> breaches;
};

std::size_t countOf(const Outcome& outcome, Operation operation) {
    return static_cast<std::size_t>(std::count_if(outcome.calls.begin(), outcome.calls.end(),
                                                  [=](const Call& call) { return call.operation == operation; }));
}

/// Number of the first such call about a path; the number of all calls when there is none.
std::size_t firstCall(const Outcome& outcome, Operation operation, std::string_view path) {
    const auto found = std::find_if(outcome.calls.begin(), outcome.calls.end(), [=](const Call& call) {
        return call.operation == operation && treeKeyOf(call.subject) == treeKeyOf(path);
    });
    return static_cast<std::size_t>(found - outcome.calls.begin());
}

// The list has to be on the disk before the installation holds it. Later is too late when the power goes in between.
void compareFlush(const Outcome& outcome, Comparison& comparison) {
    const std::string list = std::string(place::kStaging) + "/" + std::string(kManagedFileListName);
    const std::size_t moved = firstCall(outcome, Operation::moveFile, list);
    if (moved < outcome.calls.size() && firstCall(outcome, Operation::flushFile, list) > moved)
        comparison.broken("the list should be flushed before it is moved in");
}

void compareCalls(const Outcome& outcome, Comparison& comparison) {
    for (const Call& call : outcome.calls) {
        const auto* const expected =
            std::find_if(std::begin(kExpectedCalls), std::end(kExpectedCalls),
                         [&call](const ExpectedCall& each) { return each.operation == call.operation; });
        if (expected == std::end(kExpectedCalls)) continue;
        if ((!expected->subject.empty() && call.subject != expected->subject) ||
            (!expected->second.empty() && call.second != expected->second))
            comparison.broken(describe(call) + " is given something else");
    }
    if (countOf(outcome, Operation::setTimeouts) != countOf(outcome, Operation::openSession))
        comparison.broken("a session waits as long as it likes");
}

}  // namespace

std::vector<Breach> brokenExpectations(const Outcome& outcome) {
    const Setting& setting = *outcome.scenario.setting;
    if (!outcome.scenario.plan.empty()) return {};
    // A drawn release may be one that cannot be installed over the other.
    if (setting.isDrawn && outcome.code == 27) return {};
    Comparison comparison;
    if (outcome.code != undisturbedCode(setting.way))
        comparison.broken("the code should be " + std::to_string(undisturbedCode(setting.way)) +
                          " on the way: " + std::string(nameOf(setting.way)));
    const ExpectedRun expected(setting);
    comparison.compare("step", expected.steps, stepsOf(outcome));
    comparison.compare("request", expected.requests, requestsOf(outcome));
    comparison.compare("program", expected.programs, programsOf(outcome));
    if (!expected.report.empty() && reportOf(outcome) != expected.report)
        comparison.broken("the report should be " + expected.report + ", not " + reportOf(outcome));
    compareCalls(outcome, comparison);
    compareFlush(outcome, comparison);
    return std::move(comparison.breaches);
}

}  // namespace vorthmere::update::simulation
