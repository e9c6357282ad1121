#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/end_to_end/probe/started_process.h"

namespace vorthmere::probe {

/// Windows of other processes, as a screen reader sees them.

/// Waits for a visible top-level window of the process.
///
/// @return null when the process ends without one, or none comes within a minute
[[nodiscard]] HWND waitForWindow(const StartedProcess& program);

/// The window's children, in the order in which they were created.
[[nodiscard]] std::vector<HWND> childWindows(HWND window);

[[nodiscard]] std::wstring className(HWND window);

/// The text that the window itself gives; empty when it is gone or does not answer.
[[nodiscard]] std::wstring windowText(HWND window);

/// Prints one line, as UTF-8, at once. Line breaks in the text are written as "\n".
void printLine(std::wstring_view text);

}  // namespace vorthmere::probe
