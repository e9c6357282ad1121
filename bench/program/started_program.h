#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace vorthmere::bench {

/// Runs a program to its end and returns its exit code. Throws when it does not start.
///
/// @param words  its path and its arguments
/// @param output receives its standard output, an inheritable handle; null for this program's own
[[nodiscard]] DWORD runProgram(std::span<const std::wstring> words, HANDLE output = nullptr);

}  // namespace vorthmere::bench
