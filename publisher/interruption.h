#pragma once

#include <string>

namespace vorthmere::publish {

/// Lets the work end in order, with everything removed that it has begun, when somebody presses Ctrl+C, ends the
/// session, or closes what the program prints to. The work asks isInterrupted() at least once for each megabyte.
void watchForInterruptions();

/// Ends the work as a signal would. For output that cannot be written any more.
void interrupt(const std::string& reason);

[[nodiscard]] bool isInterrupted();

/// One sentence on why.
[[nodiscard]] std::string interruptionSentence();

/// To be called last after an interruption: ends the process by the signal that asked for it, as others expect who
/// wait for this process. Returns when there was none.
void endAsInterrupted();

}  // namespace vorthmere::publish
