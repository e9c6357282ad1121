#pragma once

#include <string>

namespace vorthmere::publish {

/// Lets the work end in order and remove what it has begun when somebody presses Ctrl+C, ends the session, or closes
/// the program's output. The work calls isInterrupted() at least once for each megabyte.
void watchForInterruptions();

/// Ends the work as a signal would, when the program can no longer print.
void interrupt(const std::string& reason);

[[nodiscard]] bool isInterrupted();

/// One sentence on why.
[[nodiscard]] std::string interruptionSentence();

/// To be called last after an interruption. Ends the process by the signal that interrupted it, as a process that waits
/// for this one expects. Returns when there was no signal.
void endAsInterrupted();

}  // namespace vorthmere::publish
