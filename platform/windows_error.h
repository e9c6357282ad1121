#pragma once

#include <windows.h>

#include <system_error>

namespace vorthmere::update {

/// The calling thread's last error as an error code; to be called before anything else can replace that error. Never
/// "no error": a call that failed without a reason still failed.
[[nodiscard]] inline std::error_code lastWindowsError() {
    const DWORD error = GetLastError();
    return {static_cast<int>(error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error), std::system_category()};
}

/// True for the errors that mean "there is nothing at this path", as opposed to "it cannot be told".
[[nodiscard]] inline bool isNotFound(const std::error_code& failure) {
    switch (failure.value()) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
        case ERROR_INVALID_NAME:
        case ERROR_DIRECTORY:
            return true;
        default:
            return false;
    }
}

}  // namespace vorthmere::update
