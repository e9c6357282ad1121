#pragma once

#include <string>

#include "update/arguments.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Brings an installation to the release that the channel, or the local manifest, offers.
///
/// @param arguments the parsed command line
/// @param error     receives one sentence when the result is not 0; it may stay empty where the platform gave none
/// @param progress  receives each step's text and percentage; may be empty
/// @return an ExitCode as a number
/// @throws std::filesystem::filesystem_error when the status of the installation folder or of a managed path cannot be
///         told
///
/// The installed game is untouched until everything about the new release is proven. From then on it is the new release
/// or, after a failure, the previous one again, unless a second failure hits the way back. Runs on one thread and must not run twice at the same time on
/// one installation.
[[nodiscard]] int runUpdate(Arguments arguments, std::wstring& error, const ProgressCallback& progress);

}  // namespace vorthmere::update
