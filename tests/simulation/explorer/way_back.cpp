#include "tests/simulation/explorer/way_back.h"

#include <algorithm>

namespace vorthmere::update::simulation {
namespace {

bool isChange(Operation operation) {
    return operation >= Operation::createFolder && operation <= Operation::moveFile;
}

bool isFailedChange(const Call& call) {
    if (!isChange(call.operation) || call.result == 0) return false;
    return !(call.operation == Operation::createFolder && call.result == error::alreadyExists) &&
           !(call.operation == Operation::removeEmptyFolder && call.result == error::folderNotEmpty);
}

/// True when the folder was made soon after: its parent had been missing.
bool isMadeLater(const std::vector<Call>& calls, std::size_t i) {
    for (std::size_t later = i + 1; later < calls.size(); ++later) {
        if (calls[later].operation == Operation::moveFile) return false;
        if (calls[later].operation == Operation::createFolder && calls[later].subject == calls[i].subject)
            return calls[later].result == 0;
    }
    return false;
}

/// True for a call that could not do its work, as opposed to one that found nothing or what it was to make.
bool isFailure(const std::vector<Call>& calls, std::size_t i) {
    const Call& call = calls[i];
    if (call.isHarmed) return true;
    const bool lacksParent = call.operation == Operation::createFolder && call.result == error::pathNotFound;
    return isFailedChange(call) && !(lacksParent && isMadeLater(calls, i));
}

/// True when another program of the plan can keep a file from being renamed. One that shares deletion, or has a file
/// locked, mapped or made read-only cannot.
bool canHinderRenames(const PlannedAction& planned) {
    const auto* intrusion = std::get_if<Intrusion>(&planned.action);
    if (intrusion == nullptr) return false;
    switch (intrusion->kind) {
        case Intrusion::Kind::open:
            return (intrusion->sharing & access::remove) == 0;
        case Intrusion::Kind::lock:
        case Intrusion::Kind::map:
        case Intrusion::Kind::unmap:
        case Intrusion::Kind::setReadOnly:
        case Intrusion::Kind::clearReadOnly:
        case Intrusion::Kind::release:
        case Intrusion::Kind::leaveFolder:
        case Intrusion::Kind::freeDisk:
        case Intrusion::Kind::bringVolumeBack:
        case Intrusion::Kind::endPrograms:
        case Intrusion::Kind::letChildrenRun:
            return false;
        default:
            return true;
    }
}

/// The first call at or after `from` that could not do its work.
std::size_t firstFailure(const std::vector<Call>& calls, std::size_t from) {
    for (std::size_t i = from; i < calls.size(); ++i)
        if (isFailure(calls, i)) return i;
    return calls.size();
}

bool isMove(const Call& call, std::string_view from, std::string_view to) {
    return call.operation == Operation::moveFile && isAtOrBelow(treeKeyOf(call.subject), treeKeyOf(from)) &&
           isAtOrBelow(treeKeyOf(call.second), treeKeyOf(to));
}

/// The first call at or after `from` that moves a file to where an installation takes it from. Some rollbacks begin
/// without a failed call: with a link that is seen, or a folder in a file's place.
std::size_t firstReturn(const std::vector<Call>& calls, std::size_t from, bool isSwapped) {
    const std::string_view source = isSwapped ? place::kBackup : place::kStaging;
    const std::string_view backup = isSwapped ? place::kStaging : place::kBackup;
    for (std::size_t i = from; i < calls.size(); ++i)
        if (isMove(calls[i], backup, place::kInstallation) || isMove(calls[i], place::kInstallation, source)) return i;
    return calls.size();
}

std::size_t failedRelaunch(const Outcome& outcome) {
    const std::size_t from = outcome.firstCallOf(kLaunchingText);
    for (std::size_t i = from; i < outcome.calls.size(); ++i)
        if (outcome.calls[i].operation == Operation::startProgram && outcome.calls[i].result != 0) return i;
    return outcome.calls.size();
}

}  // namespace

bool relativeKeyOf(std::string_view path, std::string& relative) {
    const std::string key = treeKeyOf(path);
    for (const std::string_view folder : {place::kBackup, place::kStaging, place::kInstallation}) {
        const std::string root = treeKeyOf(folder);
        if (!isAtOrBelow(key, root)) continue;
        relative = key.substr(std::min(key.size(), root.size() + 1));
        return true;
    }
    return false;
}

// A failed relaunch begins the swapped installation. Then only a failure in that one can begin a rollback.
WayBack::WayBack(const Outcome& outcome) {
    const std::vector<Call>& calls = outcome.calls;
    const std::size_t relaunch = failedRelaunch(outcome);
    const bool isSwapped = relaunch < calls.size();
    const std::size_t from = isSwapped ? relaunch + 1 : outcome.firstCallOf(kInstallingText);
    const std::size_t failed = firstFailure(calls, from);
    const std::size_t returned = firstReturn(calls, from, isSwapped);
    begin_ = failed < returned || returned == calls.size() ? failed : returned - 1;
    const Plan& plan = outcome.scenario.plan;
    const bool isHindered = std::any_of(plan.begin(), plan.end(), canHinderRenames);
    for (std::size_t i = begin_ + 1; i < calls.size(); ++i) {
        if (!isFailure(calls, i) || !(calls[i].isHarmed || isHindered)) continue;
        std::string relative;
        if (relativeKeyOf(calls[i].subject, relative)) hits_.push_back(relative);
        if (relativeKeyOf(calls[i].second, relative)) hits_.push_back(relative);
    }
}

bool WayBack::explains(std::string_view key) const {
    std::string relative;
    if (!relativeKeyOf(key, relative)) return false;
    return std::any_of(hits_.begin(), hits_.end(), [&relative](const std::string& hit) {
        return hit.empty() || isAtOrBelow(relative, hit) || isAtOrBelow(hit, relative);
    });
}

}  // namespace vorthmere::update::simulation
