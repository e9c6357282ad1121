#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tests/simulation/explorer/aftermath.h"
#include "tests/simulation/explorer/coverage.h"
#include "tests/simulation/explorer/documented_failures.h"
#include "tests/simulation/explorer/invariants.h"
#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// What one scenario showed.
struct Finding {
    std::vector<Breach> breaches;  ///< without the known losses
    Outcome outcome;
};

/// Plays scenarios and checks them against everything that is promised.
class Examination {
public:
    explicit Examination(const DocumentedFailures& documented) : documented_(documented), aftermath_(documented) {}

    /// @param mustMeet this many planned actions, from the first on, have to happen
    /// @param twice    plays it again, which must give the same calls and the same tree
    [[nodiscard]] Finding examine(const Scenario& scenario, std::size_t mustMeet, bool twice);

    [[nodiscard]] const Coverage& coverage() const {
        return coverage_;
    }

    [[nodiscard]] std::size_t updates() const {
        return updates_ + aftermath_.runs();
    }

    /// Scenarios in which a known loss excused something.
    [[nodiscard]] std::size_t excused() const {
        return excused_;
    }

private:
    const DocumentedFailures& documented_;
    Aftermath aftermath_;
    Coverage coverage_;
    std::size_t updates_ = 0;
    std::size_t excused_ = 0;
};

/// A finding for people: what broke, the plan, the last calls, what the trees differ in.
[[nodiscard]] std::string describe(const Finding& finding);

}  // namespace vorthmere::update::simulation
