#pragma once

#include <string>

#include "update/arguments.h"
#include "update/exit_code.h"
#include "update/manifest.h"
#include "update/progress.h"
#include "update/work_folder.h"

namespace vorthmere::update {

/// Puts the new release into the empty staging folder from its package: downloads or copies the package, checks its
/// size and SHA-256, checks its listing, unpacks it with the system's archive tool, and writes the transfer report.
///
/// @param error    empty on entry; receives the sentence of a failure
/// @param progress receives 12 % to 81 %; may be empty
/// @return ExitCode::done, or the code of the step that failed, from downloadFailed to unpackingFailed.
///         docs/failures.md lists their sentences.
[[nodiscard]] ExitCode stageCompletePackage(const Arguments& arguments, const Manifest& manifest,
                                            const WorkFolder& work, std::wstring& error,
                                            const ProgressCallback& progress);

}  // namespace vorthmere::update
