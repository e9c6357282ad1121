#include "tests/simulation/explorer/absorbed_faults.h"

#include <algorithm>

#include "tests/simulation/explorer/invariants.h"
#include "update/timetable.h"

namespace vorthmere::update::simulation {
namespace {

const std::wstring kPreparingCompleteText(timetable::preparingCompletePackage.text);
const std::wstring kCheckingInstalledText(timetable::checkingInstalledFiles.text);

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
bool isExistingFolder(const Outcome&, const Call& call) {
    return call.operation == Operation::createFolder;
}

/// From the step that checks what is installed to the first file that is staged.
bool isCheckOfInstalledFiles(const Outcome& outcome, const Call& call) {
    const std::size_t first = outcome.firstCallOf(kCheckingInstalledText);
    if (call.number < first) return false;
    return std::none_of(outcome.calls.begin() + static_cast<std::ptrdiff_t>(first),
                        outcome.calls.begin() + static_cast<std::ptrdiff_t>(call.number), [](const Call& earlier) {
                            return earlier.operation == Operation::createFolder ||
                                   earlier.operation == Operation::copyFile;
                        });
}

bool isEndOrPart(const Outcome& outcome, const Call& call) {
    const bool isReading = call.operation == Operation::readBytes || call.operation == Operation::readData ||
                           call.operation == Operation::queryDataAvailable;
    if (!isReading) return false;
    return std::any_of(outcome.scenario.plan.begin(), outcome.scenario.plan.end(), [](const PlannedAction& planned) {
        const auto* fault = std::get_if<Fault>(&planned.action);
        return fault != nullptr && fault->error == 0;
    });
}

/// What was to be removed from the work folder and is not there.
bool isVanished(const Outcome&, const Call& call) {
    const bool isRemoval = call.operation == Operation::deleteFile || call.operation == Operation::removeEmptyFolder ||
                           call.operation == Operation::listFolder;
    return isRemoval && error::saysNothingIsThere(call.result) &&
           isAtOrBelow(treeKeyOf(call.subject), treeKeyOf(place::kWorkFolder));
}

/// A removal that was refused and went well when it was tried again without the read-only attribute.
bool isTriedAgain(const Outcome& outcome, const Call& call) {
    const bool isRemoval = call.operation == Operation::deleteFile || call.operation == Operation::removeEmptyFolder;
    return isRemoval && std::any_of(outcome.calls.begin() + static_cast<std::ptrdiff_t>(call.number) + 1,
                                    outcome.calls.end(), [&call](const Call& later) {
                                        return later.operation == call.operation && later.subject == call.subject &&
                                               later.result == 0;
                                    });
}

/// Its exit code and the unpacked tree tell what it did.
bool isEndOfArchiveTool(const Outcome&, const Call& call) {
    return (call.operation == Operation::waitForEnd && treeKeyOf(call.subject).ends_with("/tar.exe")) ||
           (call.operation == Operation::readBytes && call.subject == "a pipe");
}

bool isFlush(const Outcome&, const Call& call) {
    return call.operation == Operation::flushFile;
}

bool isFinalName(const Outcome&, const Call& call) {
    return call.operation == Operation::openForItsName && error::saysNothingIsThere(call.result);
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
        {"check of installed files", "what cannot be read counts as changed and is fetched", isCheckOfInstalledFiles},
        {"end of a file", "short content fails its digest or its parser; the rest of a part comes next", isEndOrPart},
        {"end of the archive tool", "its exit code and the unpacked tree tell what it did", isEndOfArchiveTool},
        {"tried again", "a read-only entry is removed at the second try", isTriedAgain},
        {"vanished", "what is not there need not be removed; invariant 3 looks at what stays", isVanished},
        {"flush", "it only helps after a power loss", isFlush},
        {"final name", "a part of a path that is not there is taken as it is written", isFinalName},
    };
    return faults;
}

bool mayBeAbsorbed(const Outcome& outcome, const Call& call) {
    const auto& faults = absorbedFaults();
    return std::any_of(faults.begin(), faults.end(),
                       [&](const AbsorbedFault& fault) { return fault.holds(outcome, call); });
}

}  // namespace vorthmere::update::simulation
