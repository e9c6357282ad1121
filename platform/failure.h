#pragma once

#include <cstdint>
#include <system_error>

namespace vorthmere::update {

/// Most calls of the platform report a failure as a std::error_code with Windows' error number. A call without a result
/// returns it. A call with a result takes it as its last parameter and clears it on success. The other calls say how
/// they fail. (On Linux a failure is an errno, but platform/entries.h reports a missing entry as `fileNotFound`.)
///
/// These are the numbers that the program tells apart.
enum class WindowsError : std::uint32_t {
    fileNotFound = 2,
    pathNotFound = 3,
    accessDenied = 5,
    invalidParameter = 87,
    invalidName = 123,
    notADirectory = 267,
};

[[nodiscard]] inline std::error_code failureOf(std::uint32_t number) {
    return {static_cast<int>(number), std::system_category()};
}

[[nodiscard]] inline bool operator==(const std::error_code& failure, WindowsError error) {
    return failure.category() == std::system_category() && failure.value() == static_cast<int>(error);
}

/// True for the errors that mean "there is nothing at this path". False for those that mean "unknown": a share or drive
/// that went away may still hold the file. (Without its letter a drive counts as nothing: then it is "path not found".)
[[nodiscard]] inline bool isNotFound(const std::error_code& failure) {
    return failure == WindowsError::fileNotFound || failure == WindowsError::pathNotFound ||
           failure == WindowsError::invalidName || failure == WindowsError::notADirectory;
}

/// The calling thread's last error as the system has it, possibly 0 (GetLastError). Call it before anything else can
/// replace the error. Closing a handle of the platform does not replace it.
[[nodiscard]] std::uint32_t lastErrorNumber();

}  // namespace vorthmere::update
