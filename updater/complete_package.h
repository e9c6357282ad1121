#pragma once

#include <string>

#include "update/arguments.h"
#include "update/exit_code.h"
#include "update/manifest.h"
#include "update/progress.h"
#include "update/work_folder.h"

namespace vorthmere::update {

/// Fills the empty staging folder from the complete package: fetched or copied, checked by size and SHA-256, listed and
/// checked before anything is unpacked, unpacked with the system's archive tool. Writes the transfer report.
///
/// @param error    receives the sentence of a failure
/// @param progress receives 12 % to 81 %; may be empty
/// @return ExitCode::done, or the failing step's code from downloadFailed to unpackingFailed
[[nodiscard]] ExitCode stageCompletePackage(const Arguments& arguments, const Manifest& manifest,
                                            const WorkFolder& work, std::wstring& error,
                                            const ProgressCallback& progress);

}  // namespace vorthmere::update
