#pragma once

namespace vorthmere::publish {

/// The number of the signal or console event that interrupted the work; 0 when there was none.
[[nodiscard]] int receivedSignal();

}  // namespace vorthmere::publish
