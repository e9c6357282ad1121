#pragma once

#include <windows.h>

#include "update/arguments.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Runs the update to its end. Posts a ProgressRecord for each step to `window`, then one OutcomeRecord.
///
/// This is the body of the worker thread. It shares only the posted records with the window's thread and never waits
/// for the window. A record that cannot be posted is lost. The run cannot be cancelled. An exception that the run does
/// not catch ends the process with kAbnormalExitCode.
void runWorker(Arguments arguments, HWND window) noexcept;

/// Returns a callback that posts each step to `window` as a ProgressRecord, unless it is the same as the last one
/// posted. A message queue takes 10,000 messages, a download has many more pieces, and a full queue loses every further
/// message.
[[nodiscard]] ProgressCallback progressPoster(HWND window);

/// Ends the process at once with kAbnormalExitCode. For std::set_terminate in every thread: the C library's own handler
/// shows a message box first, whatever the error mode, and the process would wait until somebody closes it.
[[noreturn]] void endAbnormally() noexcept;

}  // namespace vorthmere::update
