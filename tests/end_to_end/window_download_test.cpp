#include <gmock/gmock.h>

#include <algorithm>

#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/end_to_end/support/window_fixture.h"

namespace vorthmere::end_to_end {
namespace {

constexpr std::size_t kLargeFile = std::size_t{40} * 1024 * 1024;
// Forty megabytes arrive in thousands of pieces, but only steps that look new are posted: each file, each percent.
constexpr long kFewestSteps = 100;
constexpr long kMostSteps = 200;
constexpr long kMedianLimit = 100'000;     // microseconds
constexpr long kSlowestLimit = 2'500'000;  // microseconds; at 5 s the system calls a window unresponsive

constexpr std::string_view kDownloading = "Downloading changed files";

bool downloads(const WindowContent& content) {
    return content.status.starts_with(kDownloading);
}

class WindowDownloadTest : public WindowTest {};

TEST_F(WindowDownloadTest, WindowAnswersWhileALargeDownloadReportsItsProgress) {
    ReleaseFiles files = sampleRelease42();
    // It must not shrink so much in the package that the updater fetches the package instead.
    files["data/large.pak"] = {noise(kLargeFile, 1)};
    files = withReleaseMetadata(std::move(files), 42);
    scenario.release = publish(scenario.release.folder, files, 42);
    scenario.managedPaths.insert("data/large.pak");
    const PlainChannel channel(scenario.release.folder);

    UpdaterWindow window = openWindow(windowCommand(Source::channel));
    std::vector<long> answers;
    window.waitUntil(downloads);
    while (downloads(window.look()))
        answers.push_back(std::stol(window.tell("measure-answer").at(0)));
    EXPECT_EQ(window.exitCode(), "0x00000000");
    expectInstalled(files);

    const std::vector<std::string> steps = stepsShown(trace(window));
    const auto downloading = std::count_if(steps.begin(), steps.end(), [](const std::string& step) {
        return step.starts_with("status: " + std::string(kDownloading));
    });
    EXPECT_GT(downloading, kFewestSteps);
    EXPECT_LT(downloading, kMostSteps);
    ASSERT_GT(answers.size(), 20u);
    std::sort(answers.begin(), answers.end());
    RecordProperty("steps", std::to_string(downloading));
    RecordProperty("median answer in microseconds", std::to_string(answers[answers.size() / 2]));
    RecordProperty("slowest answer in microseconds", std::to_string(answers.back()));
    EXPECT_LT(answers[answers.size() / 2], kMedianLimit);
    EXPECT_LT(answers.back(), kSlowestLimit);
}

}  // namespace
}  // namespace vorthmere::end_to_end
