#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "publisher/packed_part.h"

namespace vorthmere::publish {

/// Makes parts on all processors at once and takes them one by one, in order, on the calling thread. No more than a few
/// dozen parts exist at a time, however many processors there are.
///
/// @param make  several threads may call it at once; returns false with a sentence to stop the work
/// @param take  called with the parts from 0 to `count` - 1; returns false with a sentence to stop the work
/// @param error receives the sentence of what failed first
/// @throws whatever `make` has thrown, after all threads have ended
[[nodiscard]] bool forEachInOrder(
    std::size_t count, const std::function<bool(std::size_t index, PackedPart& part, std::string& error)>& make,
    const std::function<bool(std::size_t index, const PackedPart& part, std::string& error)>& take, std::string& error);

}  // namespace vorthmere::publish
