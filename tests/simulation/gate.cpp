#include "tests/simulation/gate.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::array<std::string_view, kOperations> kNames = {"lastErrorNumber",
                                                              "entryAttributes",
                                                              "entryFacts",
                                                              "targetFacts",
                                                              "listFolder",
                                                              "fullPath",
                                                              "openForItsName",
                                                              "finalPath",
                                                              "createFolder",
                                                              "removeEmptyFolder",
                                                              "deleteFile",
                                                              "setAttributes",
                                                              "moveFile",
                                                              "copyFile",
                                                              "openToRead",
                                                              "createToWrite",
                                                              "readBytes",
                                                              "writeBytes",
                                                              "flushFile",
                                                              "closeFile",
                                                              "closeFileHandle",
                                                              "openPipe",
                                                              "startCaptured",
                                                              "startProgram",
                                                              "openProcess",
                                                              "waitForEnd",
                                                              "endProcess",
                                                              "exitCodeOf",
                                                              "systemFolder",
                                                              "closeProcessHandle",
                                                              "openSha256",
                                                              "digestMemorySize",
                                                              "beginDigest",
                                                              "digestBytes",
                                                              "finishDigest",
                                                              "closeDigest",
                                                              "closeDigestProvider",
                                                              "crackAddress",
                                                              "openSession",
                                                              "setTimeouts",
                                                              "connectTo",
                                                              "createSecureGet",
                                                              "disableRedirects",
                                                              "setHeader",
                                                              "sendRequest",
                                                              "receiveResponse",
                                                              "queryStatus",
                                                              "queryContentLength",
                                                              "queryDataAvailable",
                                                              "readData",
                                                              "closeInternetHandle"};

constexpr std::array<std::string_view, 3> kExtents = {"without effect", "with part of its effect", "with its effect"};
constexpr std::array<std::string_view, 3> kFates = {"keep", "zero", "drop"};

std::string_view inWords(Extent extent) {
    return kExtents[static_cast<std::size_t>(extent)];
}

std::string describe(const Kill& kill) {
    return "the program is killed, the call " + std::string(inWords(kill.effect));
}

std::string describe(const PowerLoss& loss) {
    std::string text = "the power goes, the call " + std::string(inWords(loss.effect)) + ", unflushed bytes:";
    for (const Fate fate : loss.fates)
        text.append(" ").append(kFates[static_cast<std::size_t>(fate)]);
    return loss.fates.empty() ? text + " keep" : text;
}

}  // namespace

std::string_view nameOf(Operation operation) {
    return kNames[static_cast<std::size_t>(operation)];
}

std::string describe(const Call& call) {
    std::string text = std::to_string(call.number) + " " + std::string(nameOf(call.operation)) + " " + call.subject;
    if (!call.second.empty()) text.append(" -> ").append(call.second);
    text.append(" = ").append(std::to_string(call.result));
    return call.isHarmed ? text + " (harmed)" : text;
}

std::string describe(const Fault& fault) {
    std::string text = "fails with " + std::to_string(fault.error) + " " + std::string(inWords(fault.effect));
    return text + (fault.always ? ", for good" : ", once");
}

std::string describe(const Action& action) {
    return std::visit([](const auto& what) { return describe(what); }, action);
}

std::string describe(const PlannedAction& planned) {
    const Trigger& trigger = planned.trigger;
    std::string text = trigger.operation ? std::string(nameOf(*trigger.operation)) : std::string("call");
    text.append(" ").append(std::to_string(trigger.number));
    if (!trigger.subject.empty()) text.append(" on ").append(trigger.subject);
    return text + ": " + describe(planned.action);
}

Gate::Gate(Machine& machine, Plan plan) : machine_(machine), plan_(std::move(plan)), progress_(plan_.size()) {}

bool Gate::metAll() const {
    return std::all_of(progress_.begin(), progress_.end(), [](const Progress& progress) { return progress.met > 0; });
}

bool Gate::isDue(const Trigger& trigger, const Call& call, Progress& progress) {
    const Lasting& lasting = progress.lasting;
    if (lasting.isOn) return lasting.operation == call.operation && isSameName(lasting.subject, call.subject);
    if (trigger.operation && *trigger.operation != call.operation) return false;
    if (!trigger.subject.empty() && !isSameName(trigger.subject, call.subject)) return false;
    return progress.seen++ == trigger.number;
}

void Gate::decide(const Action& action, const Call& call, Progress& progress, Verdict& verdict) {
    ++progress.met;
    if (const auto* intrusion = std::get_if<Intrusion>(&action)) {
        progress.answer = act(machine_, *intrusion);
    } else if (const auto* fault = std::get_if<Fault>(&action)) {
        verdict.fault = fault;
        verdict.extent = fault->effect;
        if (fault->always) progress.lasting = {true, call.operation, call.subject};
    } else {
        const auto* kill = std::get_if<Kill>(&action);
        verdict.end = &action;
        verdict.extent = kill != nullptr ? kill->effect : std::get<PowerLoss>(action).effect;
    }
}

Gate::Verdict Gate::before(Operation operation, std::string subject, std::string second) {
    Call& call = calls_.emplace_back();
    call.number = calls_.size() - 1;
    call.operation = operation;
    call.subject = std::move(subject);
    call.second = std::move(second);
    machine_.processes.step(machine_.files, machine_.processes.stepsAlongside);
    Verdict verdict;
    for (std::size_t n = 0; n < plan_.size(); ++n)
        if (isDue(plan_[n].trigger, call, progress_[n])) decide(plan_[n].action, call, progress_[n], verdict);
    call.isHarmed = verdict.fault != nullptr;
    return verdict;
}

bool Gate::after(const Verdict& verdict, std::uint32_t result) {
    calls_.back().result = result;
    if (verdict.end == nullptr) return true;
    if (const auto* loss = std::get_if<PowerLoss>(verdict.end))
        machine_.losePower(loss->fates);
    else
        machine_.killCaller();
    return false;
}

}  // namespace vorthmere::update::simulation
