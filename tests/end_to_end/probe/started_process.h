#pragma once

#include <span>
#include <string>

#include "tests/support/windows_handle.h"

namespace vorthmere::probe {

/// A process that this one started.
struct StartedProcess {
    update::testing::KernelHandle process;
    DWORD id = 0;

    /// True when it has ended within the time, in milliseconds.
    [[nodiscard]] bool hasEnded(DWORD timeLimitMs) const;

    /// Waits for its end and returns the whole exit code.
    [[nodiscard]] DWORD waitForExitCode() const;
};

/// Starts a program; `words` are its path and its arguments. On failure, prints the error and returns an empty record.
[[nodiscard]] StartedProcess startProcess(std::span<const std::wstring> words);

}  // namespace vorthmere::probe
