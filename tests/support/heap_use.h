#pragma once

#include <cstddef>

namespace vorthmere::update::testing {

/// The bytes that this process has allocated and not freed, on all of its heaps.
///
/// Libraries allocate on first use, so run the measured code once before the first measurement.
[[nodiscard]] std::size_t heapInUse();

}  // namespace vorthmere::update::testing
