#pragma once

#include <string>

#include "update/arguments.h"
#include "update/exit_code.h"
#include "update/progress.h"
#include "update/work_folder.h"

namespace vorthmere::update {

/// Replaces the installed release with the staged one: checks the staged files against their list, waits for the game
/// to exit, moves the files, and starts the game unless `noRelaunch` is set. If the game does not start, the previous
/// release is installed again.
///
/// @param error    empty on entry; receives the sentence of a failure. Stays empty when the backup folder cannot be
///                 created or when reading a managed-file list breaks off.
/// @param progress receives 88 % to 98 %; may be empty
/// @return ExitCode::done, or the code of the step that failed, from newListUnreadable to relaunchFailed.
///         docs/failures.md lists their sentences.
/// @throws std::filesystem::filesystem_error as installWithBackup() does
[[nodiscard]] ExitCode handOver(const Arguments& arguments, const WorkFolder& work, std::wstring& error,
                                const ProgressCallback& progress);

}  // namespace vorthmere::update
