#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// One place where an update may meet a fault and still end with 0, and why that is right.
struct AbsorbedFault {
    std::string_view name;
    std::string_view why;
    bool (*holds)(const Outcome& outcome, const Call& call);
};

[[nodiscard]] const std::vector<AbsorbedFault>& absorbedFaults();

/// True when the list names the place of this call.
[[nodiscard]] bool mayBeAbsorbed(const Outcome& outcome, const Call& call);

}  // namespace vorthmere::update::simulation
