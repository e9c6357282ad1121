#include "tests/end_to_end/support/full_disk_test.h"

#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {

FullDiskTest::FullDiskTest() : EndToEndTest({.place = disk.folder()}) {
    // Its file need not be on the full disk.
    useUpdater(updaterProgram());
}

void FullDiskTest::SetUp() {
    if (!disk.reasonWhyMissing().empty()) GTEST_SKIP() << disk.reasonWhyMissing();
}

std::set<int> FullDiskTest::codesWithBytes(Source source, std::uint64_t step) {
    return codesUntilDone(source, [&](std::uint64_t run) { disk.leaveBytes(run * step); });
}

std::set<int> FullDiskTest::codesWithFiles(Source source, std::uint64_t step) {
    return codesUntilDone(source, [&](std::uint64_t run) { disk.leaveFiles(run * step); });
}

std::set<int> FullDiskTest::codesUntilDone(Source source, const std::function<void(std::uint64_t run)>& limitDisk) {
    constexpr std::uint64_t kMostRuns = 200;
    std::set<int> codes;
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    for (std::uint64_t run = 0; run < kMostRuns && !codes.contains(0); ++run) {
        SCOPED_TRACE("run " + std::to_string(run));
        disk.leaveEverything();
        std::filesystem::remove_all(scenario.workFolder);
        limitDisk(run);
        const int code = runUpdater(source);
        codes.insert(code);
        if (code != 0) expectInstallation(before);
        RecordProperty("run" + std::to_string(run), code);
    }
    return codes;
}

}  // namespace vorthmere::end_to_end
