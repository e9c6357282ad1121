#include "tests/simulation/explorer/scenario.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/simulation/digests.h"
#include "update/release_channel.h"
#include "update/text.h"
#include "updater/update_run.h"

namespace vorthmere::update::simulation {
namespace {

struct WayFacts {
    std::string_view name;
    int code;
};

constexpr std::array<WayFacts, kWays> kWayFacts = {{
    {"incremental", 0},
    {"complete package", 0},
    {"incremental over HTTPS", 0},
    {"complete package over HTTPS", 0},
    {"already current", 0},
    {"incremental, and the new game does not start", 28},
    {"complete package through links", 0},
    {"incremental, one object is damaged", 0},
    {"complete package, which is damaged", 18},
    {"complete package, and the archive tool prints too much", 21},
    {"incremental, and a folder of the game is a junction", 27},
    {"incremental, and the work folder is a junction", 13},
    {"complete package with a file that no list names", 24},
    {"complete package, which is longer than announced", 17},
    {"incremental, the game having exited", 0},
    {"incremental, and the game does not close", 26},
    {"incremental, without a running game or a relaunch", 0},
    {"already current, without a relaunch", 0},
    {"complete package with a file that would leave its folder", 21},
    {"complete package that lacks a file of its list", 24},
    {"complete package, and the archive tool is missing", 20},
}};

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
    arguments.noRelaunch = way == Way::noRelaunch || way == Way::currentNoRelaunch;
    if (!isLocal(way)) return arguments;
    const std::filesystem::path offer(place::kOffer);
    arguments.manifestFile = offer / "manifest";
    arguments.packageFile = offer / "package.zip";
    if (hasNoInventory(way)) return arguments;
    arguments.inventoryFile = offer / "inventory";
    arguments.objectDirectory = offer / "objects";
    return arguments;
}

/// Puts files outside the game under the same names as in it, so that a change in the wrong place shows.
void putSurroundings(Machine& machine, const ReleasePair& releases) {
    putFiles(machine, place::kElsewhere, releases.installed.files);
    machine.files.putFile(std::string(place::kElsewhere) + "/data/kept elsewhere.txt", contentOf("kept elsewhere"));
    machine.files.putFile("C:/Games/Other/game.exe", contentOf("MZ another game"));
}

/// Puts a link in the place of each local file of the offer.
void linkOffer(Machine& machine) {
    for (const std::string_view name : {"manifest", "package.zip"}) {
        const std::string path = std::string(place::kOffer) + "/" + std::string(name);
        const std::string target = "C:/Elsewhere/" + std::string(name);
        machine.files.putFile(target, machine.files.find(path)->content);
        machine.files.erase(path);
        machine.files.putReparsePoint(path, tag::symbolicLink, target, false);
    }
}

/// Changes one byte of a file.
void damage(Machine& machine, const std::string& path) {
    std::string bytes = *machine.files.find(path)->content;
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    machine.files.putFile(path, contentOf(std::move(bytes)));
}

void lengthen(Machine& machine, const std::string& path) {
    machine.files.putFile(path, contentOf(*machine.files.find(path)->content + "x"));
}

/// The object of a file that changes.
std::string objectOf(const Release& release, std::string_view path) {
    for (const ReleaseFile& file : release.files)
        if (file.path == path) return std::string(place::kOffer) + "/objects/" + objectName(sha256TextOf(file.content));
    throw std::logic_error("No file " + std::string(path) + ".");
}

constexpr std::size_t kTooMuchOutput = 300000;

/// Prepares what is special about a way.
void prepare(Machine& machine, Way way, const ReleasePair& releases) {
    const std::string installation(place::kInstallation);
    switch (way) {
        case Way::linkedOffer:
            return linkOffer(machine);
        case Way::damagedObject:
            return damage(machine, objectOf(releases.offered, kGameExecutableName));
        case Way::damagedPackage:
            return damage(machine, std::string(place::kOffer) + "/package.zip");
        case Way::longPackage:
            return lengthen(machine, std::string(place::kOffer) + "/package.zip");
        case Way::talkativeTool:
            machine.processes.archiveTool.alsoPrintsBytes = kTooMuchOutput;
            return;
        case Way::noArchiveTool:
            return machine.files.erase("C:/Windows/System32/tar.exe");
        case Way::linkedFolder:
            machine.files.erase(installation + "/data");
            return machine.files.putReparsePoint(installation + "/data", tag::junction, "C:/Elsewhere/data", true);
        case Way::linkedWorkFolder:
            machine.files.erase(std::string(place::kWorkFolder));
            return machine.files.putReparsePoint(std::string(place::kWorkFolder), tag::junction, "C:/Elsewhere", true);
        default:
            return;
    }
}

std::string channelObject(const Machine& machine) {
    for (const auto& [address, answer] : machine.internet.answers)
        if (address.find(kObjectNamePrefix) != std::string::npos) return address;
    return {};
}

}  // namespace

std::string_view nameOf(Way way) {
    return kWayFacts[static_cast<std::size_t>(way)].name;
}

Offer offerOf(const ReleasePair& releases, Way way) {
    if (way == Way::unlistedFile) return offerOf(releases.offered, {{"data/unlisted.pak", "in no list"}});
    if (way == Way::escapingFile) return offerOf(releases.offered, {{"../escaped.pak", "out of the folder"}});
    if (way == Way::lackingFile) return offerOf(releases.offered, {}, kReleaseMarkerName);
    return offerOf(releases.offered);
}

bool hasNoInventory(Way way) {
    switch (way) {
        case Way::complete:
        case Way::linkedOffer:
        case Way::damagedPackage:
        case Way::talkativeTool:
        case Way::unlistedFile:
        case Way::longPackage:
        case Way::escapingFile:
        case Way::lackingFile:
        case Way::noArchiveTool:
            return true;
        default:
            return false;
    }
}

int undisturbedCode(Way way) {
    return kWayFacts[static_cast<std::size_t>(way)].code;
}

SettingPointer settingOf(ReleasePair releases, Way way, Profile profile, bool hasRunningGame) {
    auto setting = std::make_shared<Setting>();
    setting->way = way;
    setting->profile = profile;
    setting->machine = Machine(profile);
    Machine& machine = setting->machine;
    putFiles(machine, place::kInstallation, releases.installed.files);
    putFiles(machine, place::kInstallation, releases.players);
    for (const std::string& folder : releases.emptyFolders)
        machine.files.putFolder(std::string(place::kInstallation) + "/" + folder);
    // What an earlier update left behind.
    machine.files.putFile(std::string(place::kBackup) + "/data/of 40.pak", contentOf("of 40"),
                          attribute::archive | attribute::readOnly);
    machine.files.putReparsePoint(std::string(place::kStaging) + "/planted", tag::junction,
                                  std::string(place::kElsewhere), true);
    putSurroundings(machine, releases);
    const Offer offer = offerOf(releases, way);
    if (isLocal(way))
        putLocalOffer(machine, offer);
    else
        putChannel(machine, offer);
    if (way == Way::completeOverHttps) machine.internet.answers.erase(channelObject(machine));
    setting->arguments = argumentsOf(way, isCurrent(way) ? releases.offered.number : releases.installed.number);
    ProgramBehaviour& game = machine.processes.programs["vorthmere.exe"];
    if (hasRunningGame && way != Way::noRelaunch) {
        if (way != Way::lastingGame) game.runsForMs = kGameEndsAfterMs;
        const Error fault = machine.processes.start(machine.files, kGame, kGame, place::kInstallation, 0,
                                                    setting->arguments.parentProcessId);
        if (fault != error::none) throw std::logic_error("The game of a scenario does not start.");
        if (way == Way::exitedGame) machine.processes.end(machine.files, setting->arguments.parentProcessId, 0);
        game.runsForMs.reset();
    }
    if (way == Way::relaunchFails) game.startError = error::notAProgram;
    prepare(machine, way, releases);
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
    const auto progress = [&outcome, &gate](std::wstring text, std::uint32_t percent) {
        outcome.steps.push_back({std::move(text), percent, gate.calls().size()});
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
