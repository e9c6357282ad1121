#pragma once

#include <chrono>
#include <functional>
#include <thread>

#include "tests/end_to_end/support/child_process.h"

namespace vorthmere::end_to_end {

/// Waits for a condition that nothing announces.
///
/// @return false when it does not hold within the time limit
[[nodiscard]] inline bool waitUntil(const std::function<bool()>& condition,
                                    Milliseconds timeLimit = Milliseconds(60'000)) {
    const auto end = std::chrono::steady_clock::now() + timeLimit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(Milliseconds(5));
    }
    return true;
}

}  // namespace vorthmere::end_to_end
