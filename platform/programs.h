#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/handle.h"
#include "platform/streams.h"

namespace vorthmere::update {

void closeProcessHandle(void* handle) noexcept;

using ProcessHandle = UniqueHandle<OpaqueHandleTraits<closeProcessHandle>>;

/// A pipe of which a child process may inherit the write end alone: a child with the read end would keep the pipe from
/// ever breaking.
struct Pipe {
    FileHandle readEnd;
    FileHandle writeEnd;
};

/// @param pipe holds what could be opened, whether the call succeeds or not
[[nodiscard]] std::error_code openPipe(Pipe& pipe);

/// Starts a program hidden, with its standard output and standard error going into a pipe (CreateProcessW).
///
/// @param program       full path; like the next two in its plain form, which the system limits to 259 characters
/// @param commandLine   the whole of it, the program's name quoted in front
/// @param workingFolder exists; of 258 characters at most, whatever the machine's settings: else error 267
/// @param output        write end of a pipe; still the caller's afterwards
/// @return the process, empty after a failure
[[nodiscard]] ProcessHandle startCaptured(const std::filesystem::path& program, std::wstring commandLine,
                                          const std::filesystem::path& workingFolder, const FileHandle& output,
                                          std::error_code& failure);

/// Starts a program that inherits no handle, shows itself as it likes, and is neither waited for nor watched.
[[nodiscard]] std::error_code startProgram(const std::filesystem::path& program, std::wstring commandLine,
                                           const std::filesystem::path& workingFolder);

/// Opens a running process, for waiting only (OpenProcess). `failure` is WindowsError::invalidParameter when there is
/// no such process.
[[nodiscard]] ProcessHandle openProcess(std::uint32_t processId, std::error_code& failure);

inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;

/// Waits for a process to end (WaitForSingleObject).
///
/// @param milliseconds longest wait, or kWaitForever
/// @return true when it has ended; false when the time is over or the process cannot be waited for
[[nodiscard]] bool waitForEnd(const ProcessHandle& process, std::uint32_t milliseconds);

/// Ends a process and does not wait for its end (TerminateProcess).
void endProcess(const ProcessHandle& process, std::uint32_t exitCode);

/// The exit code of a process that has ended (GetExitCodeProcess).
///
/// @param unknown returned when it cannot be read
[[nodiscard]] std::uint32_t exitCodeOf(const ProcessHandle& process, std::uint32_t unknown);

/// The folder of the system's own programs (GetSystemDirectoryW); empty when it cannot be told or has more than
/// kMaxSystemFolderLength characters.
[[nodiscard]] std::filesystem::path systemFolder();

inline constexpr std::uint32_t kMaxSystemFolderLength = 260;

}  // namespace vorthmere::update
