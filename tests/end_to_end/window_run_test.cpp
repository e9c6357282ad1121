#include <gmock/gmock.h>

#include "tests/end_to_end/support/sample_release.h"
#include "tests/end_to_end/support/window_fixture.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

using Steps = std::vector<std::string>;

constexpr Milliseconds kEndLimit{60'000};
constexpr char kComplete[] = "Update complete. Welcome back, pilot.";
constexpr char kVerified[] = "The portable update verification completed successfully.";
constexpr char kRelaunching[] = "Kelvane is relaunching now.";
constexpr char kFailed[] = "Update could not be completed.";
constexpr char kRolledBack[] = R"(\nYour previous installation was left in place or restored.)";

void addStep(Steps& steps, const std::string& status, std::uint64_t percent) {
    steps.push_back("status: " + status);
    steps.push_back("bar: " + std::to_string(percent));
}

void addHandOver(Steps& steps) {
    addStep(steps, "Waiting for Kelvane to close...", 88);
    addStep(steps, "Installing the new release...", 94);
    addStep(steps, "Launching Kelvane...", 98);
    addStep(steps, kComplete, 100);
}

void addSuccess(Steps& steps, const std::string& detail) {
    steps.push_back(std::string("status: ") + kComplete);
    steps.push_back("detail: " + detail);
    steps.emplace_back("bar: 100");
}

/// Adds one step for each file of release 42 that release 41 does not have with the same content.
void addChangedFiles(Steps& steps) {
    std::vector<std::uint64_t> sizes;
    std::uint64_t all = 0;
    for (const auto& [path, file] : sampleRelease42()) {
        const auto installed = sampleRelease41().find(path);
        if (installed != sampleRelease41().end() && installed->second.content == file.content) continue;
        sizes.push_back(file.content.size());
        all += sizes.back();
    }
    std::uint64_t fetched = 0;
    for (std::size_t i = 0; i < sizes.size(); fetched += sizes[i++])
        addStep(steps,
                "Downloading changed files (" + std::to_string(i + 1) + " of " + std::to_string(sizes.size()) + ")...",
                12 + fetched * 65 / all);
}

class WindowRunTest : public WindowTest {
protected:
    /// The window stays for 900 ms after the last step and closes itself.
    static void expectClosedByTimer(const CallTrace& calls) {
        const std::vector<TracedCall> timers = calls.callsOf("user32.SetTimer");
        ASSERT_EQ(timers.size(), 1u);
        EXPECT_THAT(timers[0].numbers(), ElementsAre(testing::_, 1, 900, 0));
        const std::vector<TracedCall> closed = calls.callsOf("user32.DestroyWindow");
        ASSERT_EQ(closed.size(), 1u);
        EXPECT_GE(closed[0].time - timers[0].time, 0.85);
        EXPECT_LT(closed[0].time - timers[0].time, 5.0) << "the timer did not close the window";
        EXPECT_TRUE(calls.callsOf("user32.SetFocus").empty());
    }
};

TEST_F(WindowRunTest, IncrementalUpdateShowsEveryStepAndClosesItself) {
    UpdaterWindow window = openWindow(windowCommand(Source::incremental));
    EXPECT_EQ(window.exitCode(), "0x00000000");
    expectRelease42();
    Steps steps;
    addStep(steps, "Checking the alpha channel...", 5);
    addStep(steps, "Checking installed files...", 9);
    addChangedFiles(steps);
    addStep(steps, "Changed files verified; unchanged files reused.", 84);
    addHandOver(steps);
    addSuccess(steps, kVerified);
    const CallTrace calls = trace(window);
    EXPECT_THAT(stepsShown(calls), ElementsAreArray(steps));
    expectClosedByTimer(calls);
}

TEST_F(WindowRunTest, CompleteUpdateShowsEveryStepAndClosesItself) {
    UpdaterCommand complete = windowCommand(Source::completePackage);
    complete.relaunch = true;
    UpdaterWindow window = openWindow(complete);
    EXPECT_EQ(window.exitCode(), "0x00000000");
    expectRelease42();
    Steps steps;
    addStep(steps, "Checking the alpha channel...", 5);
    addStep(steps, "Preparing the complete update package...", 12);
    addStep(steps, "Preparing the verified update package...", 35);
    addStep(steps, "Verifying package integrity...", 68);
    addStep(steps, "Inspecting the update package...", 75);
    addStep(steps, "Unpacking updated game files...", 81);
    addHandOver(steps);
    addSuccess(steps, kRelaunching);
    const CallTrace calls = trace(window);
    EXPECT_THAT(stepsShown(calls), ElementsAreArray(steps));
    expectClosedByTimer(calls);
}

TEST_F(WindowRunTest, CurrentInstallationIsShownAsASuccess) {
    UpdaterCommand current = windowCommand(Source::completePackage);
    current.current = "42";
    UpdaterWindow window = openWindow(current);
    EXPECT_EQ(window.exitCode(), "0x00000000");
    expectRelease41();
    Steps steps;
    addStep(steps, "Checking the alpha channel...", 5);
    addStep(steps, "This installation is already current.", 100);
    addSuccess(steps, kVerified);
    EXPECT_THAT(stepsShown(trace(window)), ElementsAreArray(steps));
}

TEST_F(WindowRunTest, FailureShowsItsSentenceTheRollbackLineAndTheButton) {
    UpdaterWindow window = openFailedWindow();
    const WindowContent content = window.look();
    EXPECT_EQ(content.status, kFailed);
    EXPECT_THAT(content.detail, HasSubstr(std::string(".") + kRolledBack));
    EXPECT_EQ(content.position, 5);
    EXPECT_TRUE(content.buttonVisible);
    window.tell("click-button");
    EXPECT_EQ(window.exitCode(), "0x0000000B");
    const Steps steps = stepsShown(trace(window));
    ASSERT_EQ(steps.size(), 4u);
    EXPECT_EQ(steps[2], std::string("status: ") + kFailed);
    EXPECT_EQ(steps[3], "detail: " + content.detail);
    expectRelease41();
}

TEST_F(WindowRunTest, AStatusThatCannotBeToldEndsTheProgramAtOnceWithAndWithoutAWindow) {
    const fs::path list = scenario.installation / "KVN_MANAGED_FILES.txt";
    fs::rename(list, scenario.root / "aside");
    fs::create_symlink(list, list);
    for (const bool inWindow : {true, false}) {
        SCOPED_TRACE(inWindow);
        UpdaterCommand command = this->command(Source::incremental);
        command.window = inWindow;
        ChildProcess probe = startThroughProbe("run", command.arguments());
        EXPECT_EQ(probe.readLine(kEndLimit), "0x40000015");
        EXPECT_EQ(probe.wait(kEndLimit).exitCode, 0);
        finishRun();
    }
    fs::remove(list);
    fs::rename(scenario.root / "aside", list);
    expectRelease41();
}

TEST_F(WindowRunTest, WindowAnswersDuringTheRun) {
    OpenGame game;
    UpdaterWindow window = openBusyWindow(game);
    for (int i = 0; i < 20; ++i)
        EXPECT_LT(std::stol(window.tell("measure-answer").at(0)), 1'000'000) << "microseconds";
    game.close();
    EXPECT_EQ(window.exitCode(), "0x00000000");
}

}  // namespace
}  // namespace vorthmere::end_to_end
