#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "publisher/build_release.h"
#include "publisher/collect_garbage.h"

namespace vorthmere::publish {

/// Exit codes of the program.
inline constexpr int kDone = 0;
inline constexpr int kRefused = 1;
inline constexpr int kWrongCommandLine = 2;

struct CheckRequest {
    std::string address;            ///< of a served channel, ending in "/"; empty for a folder
    std::filesystem::path channel;  ///< the folder
    std::filesystem::path caFile;   ///< certificates to trust instead of the system's
    bool allowFolderChanges = false;
};

struct PlanRequest {
    std::filesystem::path from;
    std::filesystem::path channel;
    bool listFiles = false;
};

enum class Action { build, check, plan, collectGarbage };

/// What the command line asks for.
struct Command {
    Action action = Action::check;
    ReleaseRequest build;
    CheckRequest check;
    PlanRequest plan;
    GarbageRequest garbage;
    bool isQuiet = false;  ///< print nothing but faults and what was asked for
    bool asJson = false;   ///< print one object instead of sentences
};

/// Reads the command line. Prints help, the version, or what is wrong with the command line.
///
/// @param arguments without the program's name
/// @return nothing when there is a command to run, else the exit code
[[nodiscard]] std::optional<int> parseCommandLine(std::vector<std::string> arguments, Command& command);

}  // namespace vorthmere::publish
