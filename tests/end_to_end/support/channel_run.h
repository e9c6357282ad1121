#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "tests/end_to_end/support/child_process.h"
#include "tests/end_to_end/support/scenario.h"

namespace vorthmere::end_to_end {

/// One run of the updater in its window on an installation of its own, so that several can take place at once.
class ChannelRun {
public:
    /// How a run is to end.
    struct Expectation {
        int exitCode = 0;
        testing::Matcher<const std::string&> sentence = "";  ///< of a failure
        std::string transferMode;                            ///< of a success: "incremental" or "full"
    };

    explicit ChannelRun(std::string name);

    /// The file of the run's own name that the channel serves as its package.
    [[nodiscard]] std::string packageName() const;
    [[nodiscard]] std::string inventoryName() const;

    /// What the updater is offered; the package's address is the run's own. May be changed before it is rendered.
    ManifestText manifest;

    void start(Expectation expectation);

    /// Waits for the end, compares it with what was expected, and looks at the installation: after a failure it must be
    /// as it was, byte for byte and with its times, after a success release 42.
    ///
    /// @param timeLimit for the whole run since its start
    void finish(Milliseconds timeLimit);

    [[nodiscard]] bool hasEnded(Milliseconds timeLimit) {
        return process_->hasEnded(timeLimit);
    }

    /// Kills the updater's whole group of processes.
    void kill() {
        process_->killGroup();
    }

    const std::string name;
    Scenario scenario;

private:
    void expectUntouched() const;
    void expectUpdated() const;

    Expectation expectation_;
    TreeSnapshot installationBefore_;
    TreeSnapshot protectedBefore_;
    std::optional<ChildProcess> process_;
};

}  // namespace vorthmere::end_to_end
