#pragma once

#include <span>
#include <string>

namespace vorthmere::probe {

/// Every subcommand takes the arguments after its name and returns the probe's exit code, 0 for success. Results go to
/// standard output, one line each and written at once. Errors go to standard error.
using Arguments = std::span<const std::wstring>;

/// Exit code for arguments that a subcommand cannot use.
inline constexpr int kUsageError = 64;

/// download FOLDER JOB...: performs all jobs at once, each in its own thread, and prints one line for each in order,
/// separated by tabs: "true" or "false", the sentence, milliseconds, and the received and expected bytes that progress
/// reported last. A job is one argument. Its number, from 0, is the name of its file in FOLDER:
///   "open URL"        openHttpsRequest()
///   "manifest URL"    fetchManifest()
///   "file LIMIT URL"  downloadHttpsFile() into that file
int download(Arguments arguments);

/// download-loop ROUNDS FILE URL...: downloads every URL into the file in each round, at most 1000 bytes. Prints two
/// lines, after a few rounds to warm up and at the end, separated by tabs: "before" or "after", the handles of the
/// process, the highest of some new WinHTTP handles, and how many downloads have succeeded.
int downloadLoop(Arguments arguments);

/// idle: prints its own process id and runs until the end of standard input. Tests let the updater wait for it.
int idle(Arguments arguments);

/// lock FILE...: holds every file open without sharing, prints "locked", and closes them at the end of standard input.
int lock(Arguments arguments);

/// message-box PROGRAM [ARGUMENT...]: runs a program that shows a message box. Prints "caption=" and the text of each
/// visible control after its class ("Static="), answers the box with OK, and prints "exit=" as in `outcome`. When no
/// window comes, it prints only the last line.
int messageBox(Arguments arguments);

/// outcome UPDATER [ARGUMENT...]: runs the updater in its window and prints three lines when it has ended: "status="
/// and "detail=" with the last texts shown, line breaks as "\n", then "exit=" with the whole exit code as in `run`. It
/// closes the window of a failed run with its button.
int outcome(Arguments arguments);

/// run PROGRAM [ARGUMENT...]: runs a program to its end and prints its whole 32-bit exit code as "0x" and 8 digits.
int run(Arguments arguments);

/// trust CERTIFICATE: adds the authority in that file (DER) to those that the user of this prefix trusts, and prints
/// "trusted".
int trust(Arguments arguments);

/// window UPDATER [ARGUMENT...]: runs the updater in its window and does what each line of standard input says. Every
/// answer ends with the line ".". The first answer comes unasked: "process=" with the updater's process id in
/// hexadecimal, and "window=" with the class of the window that it shows, if any.
///   describe         the window: class, text, styles, size, twice the distance of its centre from the work area's;
///                    then each control: class, text, styles, id, rectangle in client pixels
///   look             status and detail text, position of the bar, whether the button is visible and has the focus
///   click-button, click-close-box, press-alt-f4, press-space
///                    real input, as from mouse and keyboard
///   measure-answer   how long the window takes to answer a message, in microseconds
///   place            the client area on the screen: left, top, width, height
///   post MESSAGE WPARAM   posts a message, two decimal numbers
///   exit-code        waits for the updater's end; its exit code as in `run`
int window(Arguments arguments);

}  // namespace vorthmere::probe
