#include "tests/end_to_end/support/full_disk_fixture.h"

#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {
namespace {

ScenarioOptions onDisk(ScenarioOptions options, const SmallDisk& disk) {
    options.place = disk.folder();
    return options;
}

}  // namespace

FullDiskTest::FullDiskTest(ScenarioOptions options) : EndToEndTest(onDisk(std::move(options), disk)) {
    // The program's file need not be on the full disk.
    useUpdater(updaterProgram());
}

void FullDiskTest::SetUp() {
    if (!disk.reasonWhyMissing().empty()) GTEST_SKIP() << disk.reasonWhyMissing();
}

FullDiskTest::Outcomes FullDiskTest::outcomesWithBytes(Source source, std::uint64_t step) {
    return outcomesUntilDone(source, [&](std::uint64_t run) { disk.leaveBytes(run * step); });
}

FullDiskTest::Outcomes FullDiskTest::outcomesWithFiles(Source source, std::uint64_t step) {
    return outcomesUntilDone(source, [&](std::uint64_t run) { disk.leaveFiles(run * step); });
}

FullDiskTest::Outcomes FullDiskTest::outcomesUntilDone(Source source,
                                                       const std::function<void(std::uint64_t run)>& limitDisk) {
    constexpr std::uint64_t kMostRuns = 200;
    Outcomes outcomes;
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    for (std::uint64_t run = 0; run < kMostRuns; ++run) {
        SCOPED_TRACE("run " + std::to_string(run));
        disk.leaveEverything();
        std::filesystem::remove_all(scenario.workFolder);
        limitDisk(run);
        const RunOutcome outcome = runInWindow(command(source));
        outcomes.emplace(outcome.exitCode, outcome.sentence);
        if (outcome.exitCode == 0) break;
        expectInstallation(before);
    }
    return outcomes;
}

}  // namespace vorthmere::end_to_end
