#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/explorer/releases.h"
#include "tests/simulation/explorer/tree.h"
#include "tests/simulation/gate.h"
#include "tests/simulation/machine.h"
#include "update/arguments.h"
#include "update/timetable.h"

namespace vorthmere::update::simulation {

/// The ways that an update can take.
enum class Way : std::uint8_t {
    incremental,           ///< changed files from a local folder
    complete,              ///< the local package
    incrementalOverHttps,  ///< changed files from the channel
    completeOverHttps,     ///< the channel's package, as one of its objects is missing
    current,               ///< nothing newer is offered
    relaunchFails,         ///< the new game does not start: the releases are swapped back
    linkedOffer,           ///< the local package, its files being links
    damagedObject,         ///< incremental, but one changed file is not what was announced
    damagedPackage,        ///< the local package is not what was announced
    talkativeTool,         ///< the archive tool prints more than it may
    linkedFolder,          ///< a folder of the installation is a junction
    linkedWorkFolder,      ///< the work folder is one
    unlistedFile,          ///< the local package holds a file that its list does not name
    longPackage,           ///< the local package is a byte longer than announced
    exitedGame,            ///< incremental, and the game that is to be waited for has exited already
    lastingGame,           ///< incremental, and the game does not close
    noRelaunch,            ///< incremental; the game does not run and is left closed
    currentNoRelaunch,     ///< nothing newer is offered, and the game is left closed
    escapingFile,          ///< the local package holds a file that would leave its folder
    lackingFile,           ///< the local package lacks a file that its list names
    noArchiveTool,         ///< the local package, on a Windows without tar.exe
};
inline constexpr std::size_t kWays = static_cast<std::size_t>(Way::noArchiveTool) + 1;

[[nodiscard]] constexpr bool isCurrent(Way way) {
    return way == Way::current || way == Way::currentNoRelaunch;
}

/// The number of the first ways, on which most happens. Each of the others differs in one step.
inline constexpr std::size_t kMainWays = static_cast<std::size_t>(Way::relaunchFails) + 1;

/// What this way offers of the releases.
[[nodiscard]] Offer offerOf(const ReleasePair& releases, Way way);

/// True when the complete package is the only way that is offered.
[[nodiscard]] bool hasNoInventory(Way way);

/// How an update on this way ends when nothing disturbs it.
[[nodiscard]] int undisturbedCode(Way way);

[[nodiscard]] std::string_view nameOf(Way way);

/// A computer before an update, and what the update is asked to do. Never changed once it is made.
struct Setting {
    Way way = Way::incremental;
    Profile profile = Profile::posixDelete;
    ReleasePair releases;
    Machine machine;
    Tree before;
    Arguments arguments;
    bool isDrawn = false;  ///< its releases may be such that the one cannot be installed over the other
};

using SettingPointer = std::shared_ptr<const Setting>;

/// @param hasRunningGame the update waits for a game that ends by itself
[[nodiscard]] SettingPointer settingOf(ReleasePair releases, Way way, Profile profile = Profile::posixDelete,
                                       bool hasRunningGame = true);

/// One update and what happens meanwhile.
struct Scenario {
    SettingPointer setting;
    Plan plan;

    [[nodiscard]] Scenario with(Trigger trigger, Action action) const;
};

[[nodiscard]] std::string describe(const Scenario& scenario);

/// A step of the run that was reported.
struct ReportedStep {
    std::wstring text;
    std::uint32_t percent = 0;
    std::size_t firstCall = 0;  ///< number of the next call
};

/// How an update ended.
struct Outcome {
    enum class End : std::uint8_t { returned, threw, crashed, hung };

    Scenario scenario;
    End end = End::returned;
    int code = -1;          ///< when it returned
    std::string sentence;   ///< the error text
    std::string exception;  ///< when it threw: what(), or the path of its status query
    std::vector<Call> calls;
    std::vector<ReportedStep> steps;
    std::vector<std::size_t> timesMet;  ///< of each planned action
    std::vector<Error> answers;         ///< what each intruder was told
    std::vector<std::string> openHandles;
    std::size_t wrongHandles = 0;
    Machine machine;
    Tree after;

    /// Number of the first call at or after the step with this text; the number of all calls when there is none.
    [[nodiscard]] std::size_t firstCallOf(std::wstring_view text) const;
};

[[nodiscard]] std::string describe(const Outcome& outcome);

/// Runs an update on a copy of the setting's machine.
[[nodiscard]] Outcome play(const Scenario& scenario);

/// What the run says when it begins to change the installation, and when it has.
inline constexpr std::wstring_view kInstallingText = timetable::installing.text;
inline constexpr std::wstring_view kLaunchingText = timetable::launchingGame.text;

}  // namespace vorthmere::update::simulation
