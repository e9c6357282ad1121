#pragma once

#include <windows.h>

#include "update/arguments.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Runs the update to its end and tells `window` about it: a ProgressRecord for each step, then one OutcomeRecord.
///
/// This is the body of the worker thread. It shares nothing with the window's thread but the records that it posts, and
/// it never waits for the window. A record that cannot be posted is lost; nothing is sent again. The run cannot be
/// cancelled. An exception that escapes it ends the process.
void runWorker(Arguments arguments, HWND window) noexcept;

/// The callback that posts every step to `window` as a ProgressRecord.
[[nodiscard]] ProgressCallback progressPoster(HWND window);

}  // namespace vorthmere::update
