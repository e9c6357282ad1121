#pragma once

#include <cstddef>

namespace vorthmere::update::testing {

/// The bytes that this process has allocated and not freed, on all of its heaps.
///
/// Libraries allocate once on first use, so do what is to be measured once before the first measurement.
[[nodiscard]] std::size_t heapInUse();

}  // namespace vorthmere::update::testing
