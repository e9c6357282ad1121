#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace vorthmere::publish {

/// Calls `task` once for each index from 0 to `count` - 1, on all processors at once, in no particular order.
///
/// @param task  several threads may call it at once; returns false with a sentence to stop the work
/// @param error receives the sentence of the first task that failed
/// @return true when every task returned true. After a failure or an interruption no further task begins.
/// @throws whatever the first task that threw has thrown, after all threads have ended
[[nodiscard]] bool forEachInParallel(std::size_t count,
                                     const std::function<bool(std::size_t index, std::string& error)>& task,
                                     std::string& error);

}  // namespace vorthmere::publish
