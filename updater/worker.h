#pragma once

#include <windows.h>

#include "update/arguments.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Runs the update to its end and tells `window` about it: a ProgressRecord for each step, then one OutcomeRecord.
///
/// This is the body of the worker thread. It shares nothing with the window's thread but the records that it posts, and
/// it never waits for the window. A record that cannot be posted is lost; nothing is sent again. The run cannot be
/// cancelled. An exception that escapes it ends the process with kAbnormalExitCode.
void runWorker(Arguments arguments, HWND window) noexcept;

/// The callback that posts every step to `window` as a ProgressRecord, unless the window would show the same as before:
/// a queue takes 10,000 messages, a download comes in many more pieces, and what follows a full queue is lost.
[[nodiscard]] ProgressCallback progressPoster(HWND window);

}  // namespace vorthmere::update
