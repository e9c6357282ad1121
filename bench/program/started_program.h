#pragma once

#include <windows.h>

#include <span>
#include <string>

namespace vorthmere::bench {

/// Runs a program, `words` being its path and its arguments, and returns its exit code.
///
/// @param output where its standard output goes; null: to this program's
[[nodiscard]] DWORD runProgram(std::span<const std::wstring> words, HANDLE output = nullptr);

}  // namespace vorthmere::bench
