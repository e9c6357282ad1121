#pragma once

namespace vorthmere::update::testing {

/// Counts how often `delete` is called for a piece of memory. The memory is freed only when the watch ends, so that a
/// second `delete` or a late use does no harm. One watch at a time.
class WatchedMemory {
public:
    /// @param freed called each time; may be null
    explicit WatchedMemory(void* memory, void (*freed)() = nullptr);
    ~WatchedMemory();
    WatchedMemory(const WatchedMemory&) = delete;
    WatchedMemory& operator=(const WatchedMemory&) = delete;

    [[nodiscard]] int timesFreed() const;
};

}  // namespace vorthmere::update::testing
