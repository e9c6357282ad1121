#pragma once

#include <vector>

#include "tests/simulation/explorer/invariants.h"
#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// Invariant 10, undisturbed: what an update does when nothing disturbs it is known to the letter. Its code, the steps
/// that it reports with their percentages, what it asks the release channel and how, the programs that it starts, and
/// the report that it leaves.
///
/// @return what was otherwise; nothing for an outcome with a plan
[[nodiscard]] std::vector<Breach> brokenExpectations(const Outcome& outcome);

}  // namespace vorthmere::update::simulation
