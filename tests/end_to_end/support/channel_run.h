#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "tests/end_to_end/support/child_process.h"
#include "tests/end_to_end/support/scenario.h"

namespace vorthmere::end_to_end {

/// One run of the updater in its window on its own installation, so that several can run at the same time.
class ChannelRun {
public:
    /// How a run is to end.
    struct Expectation {
        int exitCode = 0;
        testing::Matcher<const std::string&> sentence = "";  ///< of a failure
        std::string transferMode;                            ///< of a success: "incremental" or "full"
    };

    explicit ChannelRun(std::string name);

    /// The name of this run's package on the channel, made from the run's name.
    [[nodiscard]] std::string packageName() const;
    [[nodiscard]] std::string inventoryName() const;

    /// The offered manifest, with the address of this run's package. A test may change it before it renders it.
    ManifestText manifest;

    void start(Expectation expectation);

    /// Waits for the end and compares it with the expectation. After a failure the installation must be as it was, byte
    /// for byte and with its times. After a success it must be release 42.
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
