#include "tests/simulation/explorer/scenario.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "update/release_channel.h"
#include "update/text.h"
#include "updater/update_run.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::array<std::string_view, kWays> kWayNames = {"incremental",
                                                           "complete package",
                                                           "incremental over HTTPS",
                                                           "complete package over HTTPS",
                                                           "already current",
                                                           "incremental, and the new game does not start"};

constexpr std::string_view kGame = "C:/Games/Kelvane/Vorthmere.exe";
constexpr std::string_view kUpdater = "C:/Games/Kelvane/KVNUpdater.exe";
constexpr std::uint64_t kGameEndsAfterMs = 500;

bool isLocal(Way way) {
    return way != Way::incrementalOverHttps && way != Way::completeOverHttps;
}

Arguments argumentsOf(Way way, std::uint32_t installed) {
    Arguments arguments;
    arguments.install = std::string(place::kInstallation);
    arguments.currentRelease = installed;
    if (!isLocal(way)) return arguments;
    const std::filesystem::path offer(place::kOffer);
    arguments.manifestFile = offer / "manifest";
    arguments.packageFile = offer / "package.zip";
    if (way == Way::complete) return arguments;
    arguments.inventoryFile = offer / "inventory";
    arguments.objectDirectory = offer / "objects";
    return arguments;
}

/// What lies around, under the same names as in the game, so that whatever goes astray shows.
void putSurroundings(Machine& machine, const ReleasePair& releases) {
    putFiles(machine, place::kElsewhere, releases.installed.files);
    machine.files.putFile(std::string(place::kElsewhere) + "/data/kept elsewhere.txt", contentOf("kept elsewhere"));
    machine.files.putFile("C:/Games/Other/game.exe", contentOf("MZ another game"));
}

std::string channelObject(const Machine& machine) {
    for (const auto& [address, answer] : machine.internet.answers)
        if (address.find(kObjectNamePrefix) != std::string::npos) return address;
    return {};
}

}  // namespace

std::string_view nameOf(Way way) {
    return kWayNames[static_cast<std::size_t>(way)];
}

SettingPointer settingOf(ReleasePair releases, Way way, Profile profile, bool hasRunningGame) {
    auto setting = std::make_shared<Setting>();
    setting->way = way;
    setting->profile = profile;
    setting->hasRunningGame = hasRunningGame;
    setting->machine = Machine(profile);
    Machine& machine = setting->machine;
    putFiles(machine, place::kInstallation, releases.installed.files);
    putFiles(machine, place::kInstallation, releases.players);
    for (const std::string& folder : releases.emptyFolders)
        machine.files.putFolder(std::string(place::kInstallation) + "/" + folder);
    // What an earlier update left behind.
    machine.files.putFile(std::string(place::kBackup) + "/data/of 40.pak", contentOf("of 40"),
                          attribute::archive | attribute::readOnly);
    putSurroundings(machine, releases);
    const Offer offer = offerOf(releases.offered);
    if (isLocal(way))
        putLocalOffer(machine, offer);
    else
        putChannel(machine, offer);
    if (way == Way::completeOverHttps) machine.internet.answers.erase(channelObject(machine));
    setting->arguments = argumentsOf(way, way == Way::current ? releases.offered.number : releases.installed.number);
    ProgramBehaviour& game = machine.processes.programs["vorthmere.exe"];
    if (hasRunningGame) {
        game.runsForMs = kGameEndsAfterMs;
        const Error fault = machine.processes.start(machine.files, kGame, kGame, place::kInstallation, 0,
                                                    setting->arguments.parentProcessId);
        if (fault != error::none) throw std::logic_error("The game of a scenario does not start.");
        game.runsForMs.reset();
    }
    if (way == Way::relaunchFails) game.startError = error::notAProgram;
    machine.files.flushAll();
    setting->before = treeOf(machine);
    setting->releases = std::move(releases);
    return setting;
}

Scenario Scenario::with(Trigger trigger, Action action) const {
    Scenario scenario = *this;
    scenario.plan.push_back({std::move(trigger), std::move(action)});
    return scenario;
}

std::size_t Outcome::firstCallOf(std::wstring_view text) const {
    const auto found =
        std::find_if(steps.begin(), steps.end(), [text](const ReportedStep& step) { return step.text == text; });
    return found == steps.end() ? calls.size() : found->firstCall;
}

namespace {

/// Runs the core once and fills in how it ended.
void run(Gate& gate, Arguments arguments, Outcome& outcome) {
    std::wstring error;
    const auto progress = [&outcome, &gate](std::wstring text, std::uint32_t) {
        outcome.steps.push_back({std::move(text), gate.calls().size()});
    };
    try {
        outcome.code = runUpdate(std::move(arguments), error, progress);
    } catch (const Crashed&) {
        outcome.end = Outcome::End::crashed;
    } catch (const Hung& hung) {
        outcome.end = Outcome::End::hung;
        outcome.exception = hung.where;
    } catch (const std::filesystem::filesystem_error& fault) {
        outcome.end = Outcome::End::threw;
        outcome.exception = fault.what();
    }
    if (gate.machine().isFrozen()) outcome.end = Outcome::End::crashed;
    outcome.sentence = narrow(error);
}

}  // namespace

Outcome play(const Scenario& scenario) {
    Outcome outcome;
    outcome.scenario = scenario;
    outcome.machine = scenario.setting->machine;
    const std::size_t wrongBefore = outcome.machine.wrongHandles;
    outcome.machine.beginCaller(kUpdater, place::kInstallation);
    {
        Gate gate(outcome.machine, scenario.plan);
        const Running running(gate);
        run(gate, scenario.setting->arguments, outcome);
        outcome.calls = gate.calls();
        for (std::size_t i = 0; i < scenario.plan.size(); ++i) {
            outcome.timesMet.push_back(gate.timesMet(i));
            const bool isIntrusion = std::holds_alternative<Intrusion>(scenario.plan[i].action);
            outcome.answers.push_back(isIntrusion && gate.timesMet(i) > 0 ? gate.answerTo(i) : 0);
        }
    }
    if (outcome.end != Outcome::End::crashed) outcome.openHandles = outcome.machine.endCaller();
    outcome.wrongHandles = outcome.machine.wrongHandles - wrongBefore;
    outcome.after = treeOf(outcome.machine);
    return outcome;
}

std::string describe(const Scenario& scenario) {
    std::ostringstream text;
    text << "an update from " << scenario.setting->releases.installed.number << " to "
         << scenario.setting->releases.offered.number << ", " << nameOf(scenario.setting->way) << "\n";
    for (const PlannedAction& planned : scenario.plan)
        text << "  " << describe(planned) << "\n";
    return text.str();
}

std::string describe(const Outcome& outcome) {
    std::ostringstream text;
    switch (outcome.end) {
        case Outcome::End::returned:
            text << "code " << outcome.code << ", \"" << outcome.sentence << "\"";
            break;
        case Outcome::End::threw:
            text << "exception: " << outcome.exception;
            break;
        case Outcome::End::crashed:
            text << "ended at call " << (outcome.calls.empty() ? 0 : outcome.calls.back().number);
            break;
        case Outcome::End::hung:
            text << "waits for ever: " << outcome.exception;
            break;
    }
    return text.str();
}

}  // namespace vorthmere::update::simulation
