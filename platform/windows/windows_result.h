#pragma once

#include <windows.h>

#include <system_error>

#include "platform/failure.h"

namespace vorthmere::update {

/// Why a call failed. Call it before anything else can replace the last error. Never "no error": a call that failed
/// without a reason still failed (ERROR_GEN_FAILURE).
[[nodiscard]] inline std::error_code lastFailure() {
    const DWORD error = GetLastError();
    return failureOf(error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error);
}

/// Turns the result of a call that returns a BOOL into an error code.
[[nodiscard]] inline std::error_code resultOf(BOOL succeeded) {
    return succeeded ? std::error_code() : lastFailure();
}

/// Closes a handle with `close(handle)` and keeps the thread's last error.
template <typename Close>
void closeQuietly(void* handle, const Close& close) noexcept {
    const DWORD lastError = GetLastError();
    close(handle);
    SetLastError(lastError);
}

}  // namespace vorthmere::update
