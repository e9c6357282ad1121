#pragma once

namespace vorthmere::update::testing {

/// Counts how often a piece of memory is freed with `delete`, and keeps it until the end of the watch, so that a second
/// time, or a late use, harms nothing. One watch at a time.
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
