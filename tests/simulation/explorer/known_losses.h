#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/explorer/invariants.h"

namespace vorthmere::update::simulation {

/// A known loss under a fault. It has to keep happening: a loss that no longer happens must leave the list.
struct KnownLoss {
    std::string_view name;
    std::string_view document;  ///< where the people concerned read about it
    std::string_view why;

    /// True when a breach of this outcome is this loss.
    bool (*explains)(const Outcome& outcome, const Breach& breach);

    /// Plays a scenario in which it happens. False when it no longer does.
    bool (*happens)();
};

[[nodiscard]] const std::vector<KnownLoss>& knownLosses();

/// The loss that a breach is; null for one that is not known.
[[nodiscard]] const KnownLoss* knownLossOf(const Outcome& outcome, const Breach& breach);

}  // namespace vorthmere::update::simulation
