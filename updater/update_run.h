#pragma once

#include <string>

#include "update/arguments.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Updates an installation to the release that the channel, or the local manifest, offers.
///
/// The installed files are untouched until the new release is verified and the game has exited. Then the installation
/// is the new release or, after a failure, the previous release again, unless a second failure prevents the rollback.
/// Runs on one thread, and must not run twice at the same time on one installation.
///
/// @param arguments the parsed command line
/// @param error     empty on entry; receives one sentence when the result is not 0. May stay empty: when the backup
///                  folder cannot be created, or when reading a metadata file breaks off.
/// @param progress  receives each step's text and percentage; may be empty
/// @return an ExitCode as a number. docs/failures.md lists the sentences of each.
/// @throws std::filesystem::filesystem_error when the platform cannot make the installation's path absolute or tell the
///         status of a file in it. Nothing is rolled back then.
[[nodiscard]] int runUpdate(Arguments arguments, std::wstring& error, const ProgressCallback& progress);

}  // namespace vorthmere::update
