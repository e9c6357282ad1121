#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/small_disk.h"

namespace vorthmere::end_to_end {

/// A base class, so that the disk exists before the scenario that lies on it.
struct DiskOfScenario {
    SmallDisk disk;
};

/// Runs the updater on an installation whose disk is full. At whatever step that stops it, the previous release must
/// stay as it was. Skipped where no file system can be mounted.
class FullDiskTest : private DiskOfScenario, public EndToEndTest {
protected:
    /// Exit codes with their sentences.
    using Outcomes = std::set<std::pair<std::uint32_t, std::string>>;

    explicit FullDiskTest(ScenarioOptions options = {});

    void SetUp() override;

    /// Runs the updater with more and more space until it succeeds.
    ///
    /// @param step how much more space each run has than the one before
    /// @return the outcomes of the runs, each once
    Outcomes outcomesWithBytes(Source source, std::uint64_t step);

    /// The same with a limit on the number of files and folders.
    Outcomes outcomesWithFiles(Source source, std::uint64_t step);

private:
    Outcomes outcomesUntilDone(Source source, const std::function<void(std::uint64_t run)>& limitDisk);
};

}  // namespace vorthmere::end_to_end
