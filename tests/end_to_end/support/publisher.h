#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/end_to_end/support/release_files.h"

namespace vorthmere::end_to_end {

/// How a run of kvn-release ended.
struct ToolEnd {
    int exitCode = -1;  ///< -1 when it was killed
    std::string output;
};

/// Runs the publishing tool.
///
/// @param killAtCall kills the program before this call to the system, counted among those that change files; 0 for
///                   never
ToolEnd runPublisher(const std::vector<std::string>& arguments, unsigned killAtCall = 0);

/// The tool for this system, for a test that starts it itself.
[[nodiscard]] std::filesystem::path publisherProgram();

/// True with KVN_PUBLISHER=windows in the environment: then kvn-release.exe is tested, under Wine.
[[nodiscard]] bool publisherIsForWindows();

/// A command for ChildProcess that runs the tool which is tested.
[[nodiscard]] std::vector<std::string> publisherCommand(const std::vector<std::string>& arguments);

/// A command for ChildProcess that runs kvn-release.exe under Wine.
[[nodiscard]] std::vector<std::string> windowsPublisherCommand(const std::vector<std::string>& arguments);

/// The command line of a build with the sample release's details that accepts any files as programs.
[[nodiscard]] std::vector<std::string> buildArguments(std::uint32_t release, const std::filesystem::path& game,
                                                      const std::filesystem::path& channel);

/// The inventories of a channel that name an object which the channel does not have.
[[nodiscard]] std::vector<std::string> inventoriesThatLackObjects(const std::filesystem::path& channel);

/// The files of a release that was built with buildArguments(): those of the game folder and the generated ones.
[[nodiscard]] ReleaseFiles publishedFiles(std::uint32_t release, const std::filesystem::path& game);

}  // namespace vorthmere::end_to_end
