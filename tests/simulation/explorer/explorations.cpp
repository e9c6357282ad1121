#include "tests/simulation/explorer/explorations.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <utility>

#include "tests/simulation/explorer/intrusions.h"
#include "tests/simulation/explorer/way_back.h"

namespace vorthmere::update::simulation {
namespace {

Trigger atCall(std::size_t number) {
    Trigger trigger;
    trigger.number = number;
    return trigger;
}

std::optional<Fault> anyFault(Tape& tape, const Call& call) {
    const std::span<const Fault> faults = faultsOf(call.operation);
    if (faults.empty()) return std::nullopt;
    Fault fault = tape.anyOf(faults);
    fault.always = tape.coin();
    return fault;
}

Scenario calmWay(Tape& tape, Stock& stock, std::size_t ways = kMainWays) {
    return {stock.setting(static_cast<Way>(tape.upTo(ways - 1))), {}};
}

/// Any call of a scenario.
const Call& anyCall(Tape& tape, Stock& stock, const Scenario& scenario) {
    return tape.anyOf(stock.outcomeOf(scenario).calls);
}

std::optional<Scenario> undisturbed(Tape& tape, Stock& stock) {
    return calmWay(tape, stock, kWays);
}

std::optional<Scenario> oneFault(Tape& tape, Stock& stock) {
    const Scenario calm = calmWay(tape, stock, kWays);
    const Call& call = anyCall(tape, stock, calm);
    const std::optional<Fault> fault = anyFault(tape, call);
    if (!fault) return std::nullopt;
    return calm.with(atCall(call.number), *fault);
}

/// The ways on which files change places, and the step from which on a failure leads to a rollback.
constexpr std::array<std::pair<Way, std::wstring_view>, 2> kWaysWithWayBack = {
    std::pair(Way::incremental, kInstallingText),
    std::pair(Way::relaunchFails, kLaunchingText),
};

std::optional<Scenario> faultOnTheWayBack(Tape& tape, Stock& stock) {
    const auto& [way, step] = tape.anyOf(kWaysWithWayBack);
    const Scenario calm{stock.setting(way), {}};
    const Outcome& good = stock.outcomeOf(calm);
    const std::size_t first = good.firstCallOf(step);
    if (first >= good.calls.size()) return std::nullopt;
    const Call& call = good.calls[first + tape.upTo(good.calls.size() - first - 1)];
    const std::span<const Fault> faults = faultsOf(call.operation);
    if (faults.empty() || call.operation == Operation::startProgram) return std::nullopt;
    const Scenario harmed = calm.with(atCall(call.number), faults.front());
    const Outcome& back = stock.outcomeOf(harmed);
    if (back.end != Outcome::End::returned || back.code == 0) return std::nullopt;
    if (back.calls.size() <= call.number + 1) return std::nullopt;
    const Call& second = back.calls[call.number + 1 + tape.upTo(back.calls.size() - call.number - 2)];
    const std::optional<Fault> fault = anyFault(tape, second);
    if (!fault) return std::nullopt;
    return harmed.with(atCall(second.number), *fault);
}

/// Another program opens a new file as soon as it is there, and then the update is rolled back, on a system on which a
/// name stays as long as somebody holds the file.
std::optional<Scenario> lookedAtOnTheWayBack(Tape& tape, Stock& stock) {
    const auto& [way, step] = tape.anyOf(kWaysWithWayBack);
    const Scenario calm{stock.setting(way, Profile::classicDelete), {}};
    const Outcome& good = stock.outcomeOf(calm);
    const std::size_t first = good.firstCallOf(step);
    if (first >= good.calls.size()) return std::nullopt;
    const Call& move = good.calls[first + tape.upTo(good.calls.size() - first - 1)];
    if (move.operation != Operation::moveFile || move.number + 2 >= good.calls.size()) return std::nullopt;
    const std::size_t later = move.number + 2 + tape.upTo(good.calls.size() - move.number - 3);
    if (good.calls[later].operation != Operation::moveFile) return std::nullopt;
    Intrusion look;
    look.path = move.second;
    look.sharing = access::all;
    if (tape.coin()) look.kind = Intrusion::Kind::map;
    return calm.with(atCall(move.number + 1), look).with(atCall(later), Fault{error::accessDenied});
}

/// A folder lies where a file is to be moved aside, or where one is to be moved in.
std::optional<Scenario> placeTaken(Tape& tape, Stock& stock) {
    const auto& [way, step] = tape.anyOf(kWaysWithWayBack);
    const Scenario calm{stock.setting(way), {}};
    const Outcome& good = stock.outcomeOf(calm);
    const std::size_t first = good.firstCallOf(step);
    if (first >= good.calls.size()) return std::nullopt;
    const Call& move = good.calls[first + tape.upTo(good.calls.size() - first - 1)];
    if (move.operation != Operation::moveFile) return std::nullopt;
    Intrusion folder;
    folder.kind = Intrusion::Kind::createFolder;
    folder.path = move.second;
    return calm.with(atCall(move.number), folder);
}

constexpr std::array kExtents = {Extent::none, Extent::part, Extent::whole};

std::optional<Scenario> killed(Tape& tape, Stock& stock) {
    const Scenario calm = calmWay(tape, stock);
    const Call& call = anyCall(tape, stock, calm);
    return calm.with(atCall(call.number), Kill{tape.anyOf(kExtents)});
}

/// The process ends during the rollback.
std::optional<Scenario> killedOnTheWayBack(Tape& tape, Stock& stock) {
    const Scenario calm{stock.setting(Way::incremental), {}};
    const Outcome& good = stock.outcomeOf(calm);
    const std::size_t first = good.firstCallOf(kInstallingText);
    if (first >= good.calls.size()) return std::nullopt;
    const Call& call = good.calls[first + tape.upTo(good.calls.size() - first - 1)];
    if (call.operation != Operation::moveFile) return std::nullopt;
    const Scenario harmed = calm.with(atCall(call.number), Fault{error::accessDenied});
    const Outcome& back = stock.outcomeOf(harmed);
    if (back.calls.size() <= call.number + 1) return std::nullopt;
    const Call& second = back.calls[call.number + 1 + tape.upTo(back.calls.size() - call.number - 2)];
    return harmed.with(atCall(second.number), Kill{tape.anyOf(kExtents)});
}

std::vector<Fate> anyFates(Tape& tape) {
    constexpr std::array all = {Fate::drop, Fate::zero, Fate::keep};
    std::vector<Fate> fates;
    for (std::size_t i = tape.upTo(2) + 1; i > 0; --i)
        fates.push_back(tape.anyOf(all));
    return fates;
}

std::optional<Scenario> withoutPower(Tape& tape, Stock& stock) {
    const Scenario calm = calmWay(tape, stock);
    const Call& call = anyCall(tape, stock, calm);
    return calm.with(atCall(call.number), PowerLoss{tape.coin() ? Extent::whole : Extent::none, anyFates(tape)});
}

/// After how many calls a lasting intrusion ends; 0: never.
constexpr std::array<std::size_t, 3> kLasting = {0, 1, 4};

Scenario disturbed(const Scenario& scenario, std::size_t call, const Intrusion& intrusion, Tape& tape) {
    Scenario disturbed = scenario.with(atCall(call), intrusion);
    const std::optional<Intrusion> end = endOf(intrusion);
    const std::size_t later = end ? tape.anyOf(kLasting) : 0;
    return later == 0 ? disturbed : disturbed.with(atCall(call + later), *end);
}

std::optional<Scenario> intrusion(Tape& tape, Stock& stock) {
    const Scenario calm = calmWay(tape, stock);
    const Call& call = anyCall(tape, stock, calm);
    const std::optional<Intrusion> intrusion = anyIntrusion(tape, call);
    if (!intrusion) return std::nullopt;
    return disturbed(calm, call.number, *intrusion, tape);
}

constexpr std::array kProfiles = {Profile::posixDelete, Profile::classicDelete, Profile::memoryStick,
                                  Profile::networkShare, Profile::devDrive};

Scenario drawnSetting(Tape& tape) {
    const auto way = static_cast<Way>(tape.upTo(kMainWays - 1));
    const Profile profile = tape.anyOf(kProfiles);
    const bool hasRunningGame = tape.coin();
    auto setting = std::make_shared<Setting>(*settingOf(drawnReleases(tape), way, profile, hasRunningGame));
    setting->isDrawn = true;
    return {std::move(setting), {}};
}

enum class Event : std::uint8_t { fault, intrusion, kill, powerLoss };

/// A trigger that finds the same call even when others come before it.
Trigger likeCall(const std::vector<Call>& calls, const Call& call) {
    const auto isAlike = [&call](const Call& other) {
        return other.operation == call.operation && other.subject == call.subject;
    };
    const auto before = std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(call.number), isAlike);
    return {call.operation, call.subject, static_cast<std::size_t>(before)};
}

std::optional<Scenario> withEvent(const Scenario& scenario, Event event, const std::vector<Call>& calls,
                                  const Call& call, Tape& tape) {
    switch (event) {
        case Event::fault: {
            const std::optional<Fault> fault = anyFault(tape, call);
            if (!fault) return std::nullopt;
            return scenario.with(likeCall(calls, call), *fault);
        }
        case Event::intrusion: {
            const std::optional<Intrusion> intrusion = anyIntrusion(tape, call);
            if (!intrusion) return std::nullopt;
            return disturbed(scenario, call.number, *intrusion, tape);
        }
        case Event::kill:
            return scenario.with(atCall(call.number), Kill{tape.anyOf(kExtents)});
        default:
            return scenario.with(atCall(call.number), PowerLoss{tape.anyOf(kExtents), anyFates(tape)});
    }
}

std::optional<Scenario> drawnUpdate(Tape& tape, Stock&) {
    const Scenario calm = drawnSetting(tape);
    const std::size_t kind = tape.upTo(4);
    if (kind == 4) return calm;
    const std::vector<Call> calls = play(calm).calls;
    return withEvent(calm, static_cast<Event>(kind), calls, tape.anyOf(calls), tape);
}

/// Several things at once. Which kinds can happen, and how often each does, is drawn first.
std::optional<Scenario> swarm(Tape& tape, Stock& stock) {
    const bool isDrawn = tape.coin();
    const Scenario calm = isDrawn ? drawnSetting(tape) : calmWay(tape, stock, kWays);
    const std::vector<Call> calls = isDrawn ? play(calm).calls : stock.outcomeOf(calm).calls;
    std::array<std::size_t, 4> weights{};
    std::size_t sum = 0;
    for (std::size_t& weight : weights) {
        weight = tape.coin() ? tape.upTo(99) + 1 : 0;
        sum += weight;
    }
    if (sum == 0) return calm;

    Scenario scenario = calm;
    const bool late = tape.coin();
    for (std::size_t i = tape.upTo(5) + 1; i > 0; --i) {
        std::size_t drawn = tape.upTo(sum - 1);
        std::size_t event = 0;
        while (drawn >= weights[event])
            drawn -= weights[event++];
        // Half of the swarms act where files change places.
        const std::size_t from = late ? calls.size() / 2 : 0;
        const Call& call = calls[from + tape.upTo(calls.size() - from - 1)];
        if (std::optional<Scenario> more = withEvent(scenario, static_cast<Event>(event), calls, call, tape))
            scenario = *more;
    }
    return scenario;
}

}  // namespace

const std::vector<Exploration>& explorations() {
    static const std::vector<Exploration> all = {
        {"undisturbed", true, true, 0, undisturbed},
        {"one fault", true, false, 1, oneFault},
        {"fault on the way back", true, false, 2, faultOnTheWayBack},
        {"looked at on the way back", true, false, 2, lookedAtOnTheWayBack},
        {"killed", true, false, 1, killed},
        {"killed on the way back", true, false, 2, killedOnTheWayBack},
        {"power loss", true, false, 1, withoutPower},
        {"intrusion", true, false, 1, intrusion},
        {"drawn releases", false, false, 0, drawnUpdate},
        {"swarm", false, false, 0, swarm},
        {"place taken", true, true, 1, placeTaken},
    };
    return all;
}

}  // namespace vorthmere::update::simulation
