#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::update::contract {

/// The kinds of steps. All are taken in one folder.
enum class Action {
    createFolder,
    removeEmptyFolder,
    deleteFile,
    setAttributes,
    moveFile,
    copyFile,
    copyToNew,  ///< a copy that must not replace
    write,      ///< creates or empties a file and writes its own path into it
    read,
    entryAttributes,
    entryFacts,
    targetFacts,
    listFolder,
    finalPath,
    // what another program does
    hold,
    lock,
    map,
    enter,
    letGo,
};
inline constexpr std::size_t kActions = static_cast<std::size_t>(Action::letGo) + 1;

struct Step {
    Action action = Action::letGo;
    std::string path;              ///< relative, "/" separated
    std::string second;            ///< target of a move or a copy
    unsigned access = 0;           ///< of hold
    unsigned sharing = 0;          ///< of hold
    std::uint32_t attributes = 0;  ///< of setAttributes
};

/// A step's result: Windows' error number and, on success, the facts that it reports.
struct Answer {
    std::uint32_t error = 0;
    std::string facts;
    friend bool operator==(const Answer&, const Answer&) = default;
};

/// Draws the steps of one sequence. It may lack some kinds of steps altogether.
[[nodiscard]] std::vector<Step> drawSteps(std::uint64_t seed);

[[nodiscard]] std::string describe(const Step& step);
[[nodiscard]] std::string describe(const Answer& answer);

}  // namespace vorthmere::update::contract
