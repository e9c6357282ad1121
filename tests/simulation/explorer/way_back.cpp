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

/// The first call at or after `from` that could not do its work.
std::size_t firstFailure(const std::vector<Call>& calls, std::size_t from) {
    for (std::size_t i = from; i < calls.size(); ++i)
        if (isFailure(calls, i)) return i;
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

// A relaunch that fails begins the swapped installation; only what fails in that one can begin a way back then.
WayBack::WayBack(const Outcome& outcome) {
    const std::vector<Call>& calls = outcome.calls;
    const std::size_t relaunch = failedRelaunch(outcome);
    begin_ = firstFailure(calls, relaunch < calls.size() ? relaunch + 1 : outcome.firstCallOf(kInstallingText));
    for (std::size_t i = begin_ + 1; i < calls.size(); ++i) {
        if (!isFailure(calls, i)) continue;
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
