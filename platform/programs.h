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

/// A pipe whose write end child processes inherit. They do not inherit the read end: a child that held it would block
/// when nobody reads any more, instead of failing to write.
struct Pipe {
    FileHandle readEnd;
    FileHandle writeEnd;
};

/// Opens a pipe (CreatePipe).
///
/// @param pipe receives the ends that could be opened, also after a failure
[[nodiscard]] std::error_code openPipe(Pipe& pipe);

/// Starts a program hidden, with its standard output and standard error going into a pipe (CreateProcessW). The
/// program inherits every inheritable handle.
///
/// The paths are passed on as they are, without the prefix for long paths.
///
/// @param program       full path
/// @param commandLine   begins with the program's name, quoted
/// @param workingFolder an existing folder; with more than 258 characters the call fails with error 267
/// @param output        write end of a pipe; stays the caller's
/// @return the process; empty after a failure
[[nodiscard]] ProcessHandle startCaptured(const std::filesystem::path& program, std::wstring commandLine,
                                          const std::filesystem::path& workingFolder, const FileHandle& output,
                                          std::error_code& failure);

/// Starts a program that inherits neither handles nor the error mode (CreateProcessW), and does not wait for it. The
/// parameters are those of startCaptured().
[[nodiscard]] std::error_code startProgram(const std::filesystem::path& program, std::wstring commandLine,
                                           const std::filesystem::path& workingFolder);

/// Opens a running process, only to wait for it (OpenProcess).
///
/// @param failure WindowsError::invalidParameter when there is no such process
[[nodiscard]] ProcessHandle openProcess(std::uint32_t processId, std::error_code& failure);

inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;

/// Waits for a process to end (WaitForSingleObject).
///
/// @param milliseconds longest wait, or kWaitForever
/// @return true when it has ended; false when the time has run out or the wait failed
[[nodiscard]] bool waitForEnd(const ProcessHandle& process, std::uint32_t milliseconds);

/// Ends a process by force, without waiting for its end (TerminateProcess).
void endProcess(const ProcessHandle& process, std::uint32_t exitCode);

/// The exit code of a process that has ended (GetExitCodeProcess).
///
/// @param unknown returned when the exit code cannot be read
[[nodiscard]] std::uint32_t exitCodeOf(const ProcessHandle& process, std::uint32_t unknown);

/// The folder of the system's own programs (GetSystemDirectoryW). Empty on failure, and when it has more than
/// kMaxSystemFolderLength characters.
[[nodiscard]] std::filesystem::path systemFolder();

inline constexpr std::uint32_t kMaxSystemFolderLength = 260;

}  // namespace vorthmere::update
