#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "tests/contract/differential/steps.h"
#include "tests/simulation/machine.h"

namespace vorthmere::update::contract {

/// One step as both sides took it.
struct Comparison {
    const Step& step;
    const simulation::Machine& before;  ///< the model before the step
    const simulation::Machine& after;
    const Answer& model;
    const Answer& real;
};

/// A way in which Wine is known to differ from Windows.
struct Difference {
    std::string_view name;
    std::string_view reason;
    bool (*applies)(const Comparison&);
    /// True when both gave the same answer, and only later answers would differ.
    bool showsLater = false;
    bool isRare = false;  ///< a run of the usual length may not need it
};

[[nodiscard]] std::span<const Difference> knownDifferences();

}  // namespace vorthmere::update::contract
