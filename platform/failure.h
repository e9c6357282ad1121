#pragma once

#include <cstdint>
#include <system_error>

namespace vorthmere::update {

/// Most calls of the platform tell why they failed by Windows' error number, as a std::error_code: one that only acts
/// returns it, one that yields something takes it as its last parameter and clears it on success. The others say in
/// their headers how they fail. These are the numbers that the program tells apart.
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

/// True for the errors that mean "there is nothing at this path", as opposed to "it cannot be told": a share or a drive
/// that went away may have what is looked for. (Where its letter went with it, the number is "path not found".)
[[nodiscard]] inline bool isNotFound(const std::error_code& failure) {
    return failure == WindowsError::fileNotFound || failure == WindowsError::pathNotFound ||
           failure == WindowsError::invalidName || failure == WindowsError::notADirectory;
}

/// The calling thread's last error as the system has it, also 0 (GetLastError); to be called before anything else can
/// replace it. Closing a handle does not.
[[nodiscard]] std::uint32_t lastErrorNumber();

}  // namespace vorthmere::update
