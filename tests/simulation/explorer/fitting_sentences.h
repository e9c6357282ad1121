#pragma once

#include <string_view>
#include <vector>

#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// The sentence that a run must show when a certain call of a certain step fails. No other documented one will do.
struct FittingSentence {
    Operation operation;
    std::wstring_view step;  ///< the last one that was reported before the call; empty: any
    std::string_view below;  ///< the call is about this path or one below; empty: about anything
    int code;
    std::string_view sentence;
};

/// The sentence for an outcome in which a single fault was met, once; null when any documented one will do.
[[nodiscard]] const FittingSentence* fittingSentenceOf(const Outcome& outcome);

}  // namespace vorthmere::update::simulation
