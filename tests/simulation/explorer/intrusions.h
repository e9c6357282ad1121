#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/simulation/explorer/tape.h"
#include "tests/simulation/gate.h"

namespace vorthmere::update::simulation {

/// What another program may do just before a call, to the call's paths or their folders. The choices are the path and
/// the deed.
///
/// @return nothing when the call is about no path
[[nodiscard]] std::optional<Intrusion> anyIntrusion(Tape& tape, const Call& call);

/// What ends an intrusion that lasts; nothing for one that is over when it is done.
[[nodiscard]] std::optional<Intrusion> endOf(const Intrusion& intrusion);

}  // namespace vorthmere::update::simulation
