#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "tests/simulation/explorer/scenario.h"
#include "tests/simulation/explorer/stock.h"
#include "tests/simulation/explorer/tape.h"

namespace vorthmere::update::simulation {

/// A family of scenarios: each record of choices is one.
struct Exploration {
    std::string_view name;
    bool isExhaustible;    ///< every one of them can be visited; else they are drawn
    bool isAlwaysWhole;    ///< so few that none is left out
    std::size_t mustMeet;  ///< this many planned actions, from the first on, have to happen

    /// Nothing for choices that make no scenario.
    std::optional<Scenario> (*choose)(Tape& tape, Stock& stock);
};

/// In the order of their numbers, the first of each record.
[[nodiscard]] const std::vector<Exploration>& explorations();

}  // namespace vorthmere::update::simulation
