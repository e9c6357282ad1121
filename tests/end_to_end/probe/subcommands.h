#pragma once

#include <span>
#include <string>

namespace vorthmere::probe {

/// Every subcommand takes the arguments behind its name and returns the probe's exit code: 0 when it did what it is
/// for. Results go to standard output, one line each and written at once; complaints go to standard error.
using Arguments = std::span<const std::wstring>;

/// Exit code for arguments that a subcommand cannot use.
inline constexpr int kUsageError = 64;

/// download FOLDER JOB...: performs all jobs at once, each in a thread of its own, and prints one line for each in
/// order: "true" or "false", the sentence, milliseconds, and the bytes received and expected that progress told last,
/// separated by tabs. A job is one argument, its number from 0 the name of a file in FOLDER:
///   "open URL"        openHttpsRequest()
///   "manifest URL"    fetchManifest()
///   "file LIMIT URL"  downloadHttpsFile() into that file
int download(Arguments arguments);

/// lock FILE...: holds every file open without sharing, prints "locked", and lets go at the end of standard input.
int lock(Arguments arguments);

/// outcome UPDATER [ARGUMENT...]: runs the updater in its window and prints three lines when it has ended: "status="
/// and "detail=" with the last texts shown, line breaks as "\n", then "exit=" with the whole exit code as in `run`. The
/// window of a failed run is closed with its button.
int outcome(Arguments arguments);

/// run PROGRAM [ARGUMENT...]: runs a program to its end and prints its whole 32-bit exit code as "0x" and 8 digits.
int run(Arguments arguments);

/// trust CERTIFICATE: adds the authority in that file (DER) to those which the user of this prefix trusts, and prints
/// "trusted".
int trust(Arguments arguments);

}  // namespace vorthmere::probe
