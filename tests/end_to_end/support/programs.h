#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vorthmere::end_to_end {

/// The Windows programs that the tests use. When one is missing, these throw a sentence that says what to build.
[[nodiscard]] std::filesystem::path updaterProgram();
[[nodiscard]] std::filesystem::path gameProgram();
[[nodiscard]] std::filesystem::path probeProgram();

/// A DLL that leaves a file beside itself, its own name followed by ".loaded", when a program loads it.
[[nodiscard]] std::filesystem::path foreignLibrary();

/// The Wine prefix in which they run.
[[nodiscard]] std::filesystem::path winePrefix();

/// A command for ChildProcess that runs a Windows program under Wine.
[[nodiscard]] std::vector<std::string> wineCommand(const std::filesystem::path& program,
                                                   const std::vector<std::string>& arguments);

}  // namespace vorthmere::end_to_end
