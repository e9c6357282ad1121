#include "tests/simulation/explorer/absorbed_faults.h"

#include <algorithm>

#include "tests/simulation/explorer/invariants.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::wstring_view kPreparingCompleteText = L"Preparing the complete update package...";

bool isClosing(const Call& call) {
    switch (call.operation) {
        case Operation::closeFileHandle:
        case Operation::closeProcessHandle:
        case Operation::closeDigest:
        case Operation::closeDigestProvider:
        case Operation::closeInternetHandle:
            return true;
        default:
            return false;
    }
}

bool isIncrementalAttempt(const Outcome& outcome, const Call& call) {
    return call.number < outcome.firstCallOf(kPreparingCompleteText) &&
           outcome.firstCallOf(kPreparingCompleteText) < outcome.calls.size();
}

bool isCleanUp(const Outcome& outcome, const Call& call) {
    const std::size_t launching = outcome.firstCallOf(kLaunchingText);
    return call.number >= launching && call.operation != Operation::startProgram;
}

bool isReport(const Outcome&, const Call& call) {
    return treeKeyOf(call.subject).ends_with("/transfer.txt");
}

bool isReparsePointTest(const Outcome&, const Call& call) {
    return call.operation == Operation::entryAttributes;
}

bool isSettingOfRequest(const Outcome&, const Call& call) {
    return call.operation == Operation::setTimeouts || call.operation == Operation::disableRedirects ||
           call.operation == Operation::setHeader;
}

bool isUnknownLength(const Outcome&, const Call& call) {
    return call.operation == Operation::queryContentLength;
}

/// A folder that cannot be created but is there.
bool isExistingFolder(const Outcome& outcome, const Call& call) {
    if (call.operation != Operation::createFolder) return false;
    const auto now = outcome.after.find(treeKeyOf(call.subject));
    return call.number > 0 && (now != outcome.after.end() || outcome.code == 0);
}

}  // namespace

const std::vector<AbsorbedFault>& absorbedFaults() {
    static const std::vector<AbsorbedFault> faults = {
        {"incremental way", "each of its failures leads to the complete package", isIncrementalAttempt},
        {"clean-up", "the new release is installed; what stays is removed by the next run", isCleanUp},
        {"report", "nobody reads it but people", isReport},
        {"closing", "what was opened to read is done with",
         [](const Outcome&, const Call& call) { return isClosing(call); }},
        {"reparse-point test", "only what is surely seen to be one is refused", isReparsePointTest},
        {"request settings", "the request is as safe without them", isSettingOfRequest},
        {"unknown length", "a body without one is read to its end", isUnknownLength},
        {"existing folder", "a folder that is there is what was asked for", isExistingFolder},
    };
    return faults;
}

bool mayBeAbsorbed(const Outcome& outcome, const Call& call) {
    const auto& faults = absorbedFaults();
    return std::any_of(faults.begin(), faults.end(),
                       [&](const AbsorbedFault& fault) { return fault.holds(outcome, call); });
}

}  // namespace vorthmere::update::simulation
