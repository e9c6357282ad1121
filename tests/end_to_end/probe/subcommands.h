#pragma once

#include <span>
#include <string>

namespace vorthmere::probe {

/// Every subcommand takes the arguments behind its name and returns the probe's exit code: 0 when it did what it is
/// for. Results go to standard output, one line each and written at once; complaints go to standard error.
using Arguments = std::span<const std::wstring>;

/// Exit code for arguments that a subcommand cannot use.
inline constexpr int kUsageError = 64;

/// lock FILE...: holds every file open without sharing, prints "locked", and lets go at the end of standard input.
int lock(Arguments arguments);

/// outcome UPDATER [ARGUMENT...]: runs the updater in its window and prints three lines when it has ended: "status="
/// and "detail=" with the last texts shown, line breaks as "\n", then "exit=" with the whole exit code as in `run`. The
/// window of a failed run is closed with its button.
int outcome(Arguments arguments);

/// run PROGRAM [ARGUMENT...]: runs a program to its end and prints its whole 32-bit exit code as "0x" and 8 digits.
int run(Arguments arguments);

}  // namespace vorthmere::probe
