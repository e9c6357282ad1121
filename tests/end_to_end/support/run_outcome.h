#pragma once

#include <cstdint>
#include <string>

#include "tests/end_to_end/support/child_process.h"

namespace vorthmere::end_to_end {

/// How a run in the window ended.
struct RunOutcome {
    std::uint32_t exitCode = 0;
    std::string sentence;  ///< of a failure: the first line below the status
};

/// Reads what the probe's subcommand "outcome" printed before it ended.
[[nodiscard]] RunOutcome readOutcome(ChildProcess& probe);

}  // namespace vorthmere::end_to_end
