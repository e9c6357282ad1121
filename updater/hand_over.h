#pragma once

#include <string>

#include "update/arguments.h"
#include "update/exit_code.h"
#include "update/progress.h"
#include "update/work_folder.h"

namespace vorthmere::update {

/// Puts the staged release in the place of the installed one: checks it against its own list, waits for the game to
/// exit, installs it, starts the game again.
///
/// @param error    receives the sentence of a failure; stays empty when the backup folder cannot be made
/// @param progress receives 88 % to 98 %; may be empty
/// @return ExitCode::done, or the failing step's code from newListUnreadable to relaunchFailed
/// @throws std::filesystem::filesystem_error as installWithBackup() does
[[nodiscard]] ExitCode handOver(const Arguments& arguments, const WorkFolder& work, std::wstring& error,
                                const ProgressCallback& progress);

}  // namespace vorthmere::update
