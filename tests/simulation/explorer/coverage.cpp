#include "tests/simulation/explorer/coverage.h"

#include <algorithm>
#include <array>

namespace vorthmere::update::simulation {
namespace {

/// What an update only does once something else has failed, or never does.
constexpr std::array kNeverFaulted = {Operation::lastErrorNumber};

bool isExercised(Operation operation) {
    return std::find(kNeverFaulted.begin(), kNeverFaulted.end(), operation) == kNeverFaulted.end();
}

std::string withoutAlways(Fault fault) {
    fault.always = false;
    return describe(fault);
}

}  // namespace

void Coverage::count(const Outcome& outcome) {
    for (const Call& call : outcome.calls)
        ++operations_[call.operation];
    for (std::size_t i = 0; i < outcome.scenario.plan.size(); ++i) {
        const PlannedAction& planned = outcome.scenario.plan[i];
        const auto* fault = std::get_if<Fault>(&planned.action);
        if (fault == nullptr || outcome.timesMet[i] == 0) continue;
        const auto met =
            std::find_if(outcome.calls.begin(), outcome.calls.end(), [](const Call& call) { return call.isHarmed; });
        const Operation operation = planned.trigger.operation.value_or(
            met == outcome.calls.end() ? Operation::lastErrorNumber : met->operation);
        ++faults_[{operation, withoutAlways(*fault)}];
    }
}

std::vector<std::string> Coverage::missing() const {
    std::vector<std::string> missing;
    for (std::size_t i = 0; i < kOperations; ++i) {
        const auto operation = static_cast<Operation>(i);
        if (!isExercised(operation)) continue;
        if (!operations_.contains(operation)) missing.push_back(std::string(nameOf(operation)) + " was never called");
        for (const Fault& fault : faultsOf(operation))
            if (!faults_.contains({operation, withoutAlways(fault)}))
                missing.push_back(std::string(nameOf(operation)) + " never met " + withoutAlways(fault));
    }
    return missing;
}

std::size_t Coverage::faultsMet() const {
    return faults_.size();
}

std::string Coverage::summary() const {
    std::string text = std::to_string(operations_.size()) + " operations, " + std::to_string(faults_.size()) +
                       " kinds of fault; known losses met:";
    for (const auto& [name, times] : losses_)
        text += " " + name + " " + std::to_string(times) + "x";
    return text + "\n";
}

}  // namespace vorthmere::update::simulation
