#include "tests/simulation/explorer/explorer.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace vorthmere::update::simulation {
namespace {

constexpr std::size_t kRepeatedOneIn = 20;
constexpr std::size_t kShrinkTries = 400;
constexpr std::size_t kStrideOfTime = 31;
constexpr std::uint64_t kSeedStep = 0x10001;

constexpr std::size_t kScenariosForAShare = 1000;
constexpr std::size_t kMostExcusedPercent = 20;

double secondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// The kind of a finding, so that the same kind is reported only once.
std::string kindOf(const Finding& finding, std::size_t exploration) {
    std::string kind = std::to_string(exploration);
    if (!finding.breaches.empty()) {
        const Breach& breach = finding.breaches.front();
        kind += breach.invariant + breach.what.substr(0, 24);
    }
    const auto harmed = std::find_if(finding.outcome.calls.begin(), finding.outcome.calls.end(),
                                     [](const Call& call) { return call.isHarmed; });
    if (harmed != finding.outcome.calls.end()) kind += nameOf(harmed->operation);
    return kind;
}

}  // namespace

void Explorer::explore(const Amount& amount) {
    mostFindings_ = amount.mostFindings;
    visits_.clear();
    for (std::size_t i = 0; i < explorations().size(); ++i)
        if (amount.only.empty() || std::find(amount.only.begin(), amount.only.end(), i) != amount.only.end())
            visits_.push_back({.exploration = i, .next = Choices{}});
    const auto begin = std::chrono::steady_clock::now();
    bool goesOn = true;
    while (goesOn && findings_.size() < mostFindings_) {
        goesOn = false;
        for (Visit& visit : visits_)
            goesOn |= step(visit, amount);
        if (amount.seconds && secondsSince(begin) > *amount.seconds) break;
    }
}

bool Explorer::step(Visit& visit, const Amount& amount) {
    return explorations()[visit.exploration].isExhaustible ? count(visit, amount) : draw(visit, amount);
}

bool Explorer::draw(Visit& visit, const Amount& amount) {
    if (!amount.seconds && visit.index == amount.draws) return false;
    const std::uint64_t number = visit.index++ * amount.shares + amount.share;
    Tape tape({static_cast<std::uint32_t>(visit.exploration)}, amount.seed + kSeedStep * number);
    this->visit(visit, tape);
    return true;
}

// With a time to fill, all scenarios are counted again and again, and each time other ones are visited. So a run that
// is cut off has seen a part of everything.
bool Explorer::count(Visit& visit, const Amount& amount) {
    const Exploration& exploration = explorations()[visit.exploration];
    const std::size_t stride = amount.seconds ? kStrideOfTime : std::max<std::size_t>(amount.everyNth, 1);
    while (visit.next) {
        Choices choices{static_cast<std::uint32_t>(visit.exploration)};
        choices.insert(choices.end(), visit.next->begin(), visit.next->end());
        Tape tape(std::move(choices));
        const std::size_t offset = (amount.seed + visit.round * amount.shares + amount.share) % stride;
        const bool isVisited =
            exploration.isAlwaysWhole || visit.index++ % stride == offset || isNew(exploration, tape);
        if (isVisited) {
            this->visit(visit, tape);
        } else {
            tape.upTo(explorations().size() - 1);
            static_cast<void>(exploration.choose(tape, stock_));
        }
        visit.next = tape.next(1);
        if (visit.next) {
            visit.next->erase(visit.next->begin());
        } else if (amount.seconds && !exploration.isAlwaysWhole &&
                   ++visit.round * amount.shares + amount.share < stride) {
            visit.index = 0;
            visit.next = Choices{};
        }
        if (isVisited) return true;
    }
    return false;
}

// A fault that no scenario met so far is worth a visit, whatever the stride.
bool Explorer::isNew(const Exploration& exploration, Tape tape) {
    tape.upTo(explorations().size() - 1);
    const std::optional<Scenario> scenario = exploration.choose(tape, stock_);
    if (!scenario || scenario->plan.size() != 1) return false;
    const auto* fault = std::get_if<Fault>(&scenario->plan.front().action);
    if (fault == nullptr) return false;
    const std::size_t number = scenario->plan.front().trigger.number;
    const Operation operation = stock_.outcomeOf({scenario->setting, {}}).calls[number].operation;
    return examination_.coverage().lacks(operation, *fault);
}

void Explorer::visit(Visit& visit, Tape& tape) {
    const Exploration& exploration = explorations()[tape.upTo(explorations().size() - 1)];
    const std::optional<Scenario> scenario = exploration.choose(tape, stock_);
    if (!scenario) return;
    ++visit.scenarios;
    const bool twice = ++scenarios_ % kRepeatedOneIn == 0;
    const Finding finding = examination_.examine(*scenario, exploration.mustMeet, twice);
    if (!finding.breaches.empty()) report(finding, visit.exploration, tape.taken());
}

std::optional<Finding> Explorer::run(const Choices& choices) {
    Tape tape(choices);
    const Exploration& exploration = explorations()[tape.upTo(explorations().size() - 1)];
    const std::optional<Scenario> scenario = exploration.choose(tape, stock_);
    if (!scenario) return std::nullopt;
    return examination_.examine(*scenario, exploration.mustMeet, true);
}

void Explorer::report(const Finding& finding, std::size_t exploration, const Choices& choices) {
    const std::string kind = kindOf(finding, exploration);
    if (findings_[kind]++ > 0) return;
    const std::string invariant = finding.breaches.front().invariant;
    const Choices fewer = shrunk(choices, 1, kShrinkTries, [this, &invariant](const Choices& candidate) {
        const std::optional<Finding> again = run(candidate);
        return again && !again->breaches.empty() && again->breaches.front().invariant == invariant;
    });
    const std::optional<Finding> small = run(fewer);
    std::cout << "\n" << describe(small ? *small : finding);
    std::cout << "shrunk from " << choices.size() << " choices to " << fewer.size() << "; again: simulate --tape "
              << recordOf(fewer) << "\n"
              << std::endl;
}

void Explorer::replay(const Choices& choices) {
    const std::optional<Finding> finding = run(choices);
    if (!finding) {
        std::cout << "These choices make no scenario.\n";
        return;
    }
    if (!finding->breaches.empty()) ++findings_["replayed"];
    for (const Call& call : finding->outcome.calls)
        std::cout << describe(call) << "\n";
    std::cout << "\n" << describe(*finding);
}

bool Explorer::excusesTooMuch() const {
    return visits_.size() == explorations().size() && scenarios_ >= kScenariosForAShare &&
           examination_.excused() * 100 > scenarios_ * kMostExcusedPercent;
}

void Explorer::printSummary(double seconds) const {
    for (const Visit& visit : visits_)
        std::cout << std::setw(9) << visit.scenarios << "  " << explorations()[visit.exploration].name
                  << (visit.next && explorations()[visit.exploration].isExhaustible ? " (cut off)" : "") << "\n";
    std::cout << std::setw(9) << scenarios_ << "  scenarios, " << examination_.updates() << " updates in " << std::fixed
              << std::setprecision(1) << seconds << " s: " << std::setprecision(0)
              << static_cast<double>(scenarios_) / seconds << " scenarios a second\n";
    std::cout << std::setw(9) << examination_.excused() << "  of them with a known loss\n";
    std::cout << examination_.coverage().summary();
    std::size_t times = 0;
    for (const auto& [kind, count] : findings_)
        times += count;
    std::cout << (times == 0 ? "Nothing was found.\n" : std::to_string(times) + " scenarios broke something.\n");
}

}  // namespace vorthmere::update::simulation
