#pragma once

#include <windows.h>

#include <system_error>

#include "platform/failure.h"

namespace vorthmere::update {

/// What a call that returns a BOOL left behind; to be called before anything else can replace the last error.
[[nodiscard]] inline std::error_code resultOf(BOOL succeeded) {
    return succeeded ? std::error_code() : lastFailure();
}

/// Closes a handle and keeps the thread's last error.
inline void closeQuietly(HANDLE handle) noexcept {
    const DWORD lastError = GetLastError();
    CloseHandle(handle);
    SetLastError(lastError);
}

}  // namespace vorthmere::update
