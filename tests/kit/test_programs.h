#pragma once

#include <filesystem>
#include <string>

#include "tests/kit/report.h"

namespace vorthmere::kit {

/// Runs every program that `programs.txt` in the kit's folder names, one a line, and reports each of its tests that did
/// not pass.
///
/// @param filter which tests, in GoogleTest's form
void runTestPrograms(Report& report, const std::filesystem::path& workFolder, const std::wstring& filter);

}  // namespace vorthmere::kit
