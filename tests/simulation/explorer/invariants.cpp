#include "tests/simulation/explorer/invariants.h"

#include <algorithm>
#include <set>

#include "tests/simulation/explorer/absorbed_faults.h"
#include "tests/simulation/explorer/fitting_sentences.h"
#include "tests/simulation/explorer/way_back.h"

namespace vorthmere::update::simulation {
namespace {

using Keys = std::set<std::string, std::less<>>;

std::string installed(std::string_view path) {
    return treeKeyOf(place::kInstallation) + "/" + treeKeyOf(path);
}

Keys keysOf(const Release& release) {
    Keys keys;
    for (const ReleaseFile& file : release.files)
        keys.insert(installed(file.path));
    return keys;
}

const Node* find(const Tree& tree, std::string_view key) {
    const auto found = tree.find(key);
    return found == tree.end() ? nullptr : &found->second;
}

std::string inFolder(std::string_view folder, std::string_view key) {
    return treeKeyOf(folder) + std::string(key.substr(place::kInstallation.size()));
}

bool isWorkFolder(std::string_view key) {
    return isAtOrBelow(key, treeKeyOf(place::kWorkFolder));
}

std::string_view lastName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// Looks at one outcome.
class Judge {
public:
    Judge(const Outcome& outcome, const DocumentedFailures& documented)
        : outcome_(outcome),
          setting_(*outcome.scenario.setting),
          documented_(documented),
          wayBack_(outcome),
          old_(keysOf(setting_.releases.installed)),
          new_(keysOf(setting_.releases.offered)),
          others_(changedByOthers(outcome)) {
        for (const std::string& key : new_)
            for (std::string_view folder = parentOf(key); folder.size() > place::kInstallation.size();
                 folder = parentOf(folder))
                newFolders_.emplace(folder);
    }

    std::vector<Breach> judge() {
        untouched();
        kept();
        told();
        documented();
        reported();
        returned();
        steady();
        return std::move(breaches_);
    }

private:
    void broken(std::string_view invariant, std::string_view subject, std::string what) {
        breaches_.push_back({std::string(invariant), std::string(subject), std::move(what)});
    }

    bool isManaged(std::string_view key) const {
        return old_.contains(key) || new_.contains(key);
    }

    /// True for what other programs changed, there or where it was while files changed places.
    bool isOthers(std::string_view key) const {
        if (isOthersItself(key)) return true;
        if (!isAtOrBelow(key, treeKeyOf(place::kInstallation)) || isWorkFolder(key)) return false;
        return isOthersItself(inFolder(place::kBackup, key)) || isOthersItself(inFolder(place::kStaging, key));
    }

    bool isOthersItself(std::string_view key) const {
        return std::any_of(others_.begin(), others_.end(), [key](const std::string& other) {
            return isAtOrBelow(key, other) || isAtOrBelow(other, key);
        });
    }

    bool changedPlaces() const {
        return outcome_.firstCallOf(kInstallingText) < outcome_.calls.size();
    }

    // A managed path may come and go; so may, while files change places, the folders that new files need.
    void untouched() {
        for (const auto& [key, node] : setting_.before) {
            if (isWorkFolder(key) || isOthers(key) || (isManaged(key) && node.isFile())) continue;
            const Node* now = find(outcome_.after, key);
            if (now == nullptr)
                broken("1 untouched", key, node.path + " is gone");
            else if (!same(node, *now))
                broken("1 untouched", key, node.path + " was changed");
        }
        for (const auto& [key, node] : outcome_.after)
            if (!setting_.before.contains(key) && !isWorkFolder(key) && !isOthers(key) && !isManaged(key) &&
                !newFolders_.contains(key))
                broken("1 untouched", key, node.path + " came into being");
    }

    bool isAt(std::string_view key, const Node& node) const {
        const Node* now = find(outcome_.after, key);
        return now != nullptr && sameContent(*now, node);
    }

    void kept() {
        for (const auto& [key, node] : setting_.before) {
            if (!node.isFile() || !isManaged(key) || isOthers(key)) continue;
            if (!isAt(key, node) && !isAt(inFolder(place::kBackup, key), node))
                broken("2 kept", key, node.path + " is neither in the installation nor in the backup");
        }
        const bool isBetween = outcome_.end == Outcome::End::crashed || outcome_.end == Outcome::End::threw;
        if (!isBetween || !changedPlaces() || wayBack_.begin() < outcome_.calls.size() || lostBytes()) return;
        for (const ReleaseFile& file : setting_.releases.offered.files) {
            const std::string key = installed(file.path);
            const Node node{file.path, 0, {}, contentOf(file.content)};
            if (!isOthers(key) && !isAt(key, node) && !isAt(inFolder(place::kStaging, key), node))
                broken("2 kept", key, file.path + " is neither in the staging folder nor in the installation");
        }
    }

    bool lostBytes() const {
        return std::any_of(outcome_.scenario.plan.begin(), outcome_.scenario.plan.end(),
                           [](const PlannedAction& step) { return std::holds_alternative<PowerLoss>(step.action); });
    }

    void told() {
        if (outcome_.end == Outcome::End::returned && saysNewRelease(outcome_)) {
            if (isCurrent(setting_.way)) return nothingChanged(true);
            newReleaseIsWhole();
            if (outcome_.code == 0) backupIsExact();
            if (outcome_.code == 0 && outcome_.scenario.plan.empty()) workFolderIsTidy();
            return;
        }
        const bool mayBeBetween = outcome_.end != Outcome::End::returned && changedPlaces();
        if (!mayBeBetween) nothingChanged(false);
    }

    void newReleaseIsWhole() {
        const bool mayBeExplained = outcome_.code != 0;
        for (const ReleaseFile& file : setting_.releases.offered.files) {
            const std::string key = installed(file.path);
            if (isOthers(key) || (mayBeExplained && wayBack_.explains(key))) continue;
            const Node* now = find(outcome_.after, key);
            if (now == nullptr || !now->isFile() || *now->content != file.content)
                broken("3 told", key, file.path + " is not the new release's");
            else if (lastName(now->path) != lastName(file.path))
                broken("3 told", key, file.path + " is written " + now->path);
        }
        for (const std::string& key : old_)
            if (!new_.contains(key) && !newFolders_.contains(key) && !isOthers(key) &&
                !(mayBeExplained && wayBack_.explains(key)) && outcome_.after.contains(key))
                broken("3 told", key, key + " of the old release is still there");
    }

    void workFolderIsTidy() {
        const std::string work = treeKeyOf(place::kWorkFolder);
        for (const auto& [key, node] : outcome_.after)
            if (isWorkFolder(key) && key != work && key != work + "/transfer.txt" && key != work + "/inventory.txt" &&
                !isAtOrBelow(key, treeKeyOf(place::kBackup)))
                broken("3 told", key, node.path + " was left in the work folder");
    }

    // A recovery would bring back anything else that lies there.
    void backupIsExact() {
        const std::string folder = treeKeyOf(place::kBackup) + "/";
        for (const auto& [key, node] : outcome_.after) {
            if (!node.isFile() || !key.starts_with(folder) || isOthers(key)) continue;
            const std::string original = installed(key.substr(folder.size()));
            const Node* before = find(setting_.before, original);
            if (!isOthers(original) && (before == nullptr || !isManaged(original) || !sameContent(*before, node)))
                broken("3 told", key, node.path + " is in the backup and was not replaced");
        }
    }

    void nothingChanged(bool workFolderToo) {
        for (const auto& [key, node] : setting_.before) {
            if ((isWorkFolder(key) && !workFolderToo) || isOthers(key) || wayBack_.explains(key)) continue;
            const Node* now = find(outcome_.after, key);
            if (now == nullptr)
                broken("3 told", key, node.path + " is not back");
            else if (!same(node, *now))
                broken("3 told", key, node.path + " is not as it was");
        }
        for (const auto& [key, node] : outcome_.after)
            if (!setting_.before.contains(key) && (!isWorkFolder(key) || workFolderToo) && !isOthers(key) &&
                !wayBack_.explains(key))
                broken("3 told", key, node.path + " is left over");
    }

    void documented() {
        if (outcome_.end == Outcome::End::returned && !documented_.contains(outcome_.code, outcome_.sentence))
            broken("4 documented", "", "code " + std::to_string(outcome_.code) + " with \"" + outcome_.sentence + "\"");
        const FittingSentence* fitting = fittingSentenceOf(outcome_);
        if (outcome_.end == Outcome::End::returned && fitting != nullptr &&
            (outcome_.code != fitting->code || outcome_.sentence != fitting->sentence))
            broken(
                "4 documented", "",
                "code " + std::to_string(fitting->code) + " with \"" + std::string(fitting->sentence) + "\" would fit");
        if (outcome_.end != Outcome::End::threw) return;
        constexpr std::string_view operations[] = {"exists", "status", "absolute"};
        if (std::none_of(std::begin(operations), std::end(operations), [this](std::string_view operation) {
                return outcome_.exception.find(" " + std::string(operation) + ": ") != std::string::npos;
            }))
            broken("4 documented", "", "exception " + outcome_.exception);
    }

    void reported() {
        if (outcome_.end != Outcome::End::returned || outcome_.code != 0) return;
        for (const Call& call : outcome_.calls)
            if (call.isHarmed && !mayBeAbsorbed(outcome_, call))
                broken("5 reported", treeKeyOf(call.subject), describe(call) + " was not reported");
    }

    void returned() {
        if (outcome_.end == Outcome::End::hung) broken("6 returned", "", "it waits for ever: " + outcome_.exception);
        for (const std::string& handle : outcome_.openHandles)
            broken("6 returned", "", handle + " was left open");
        if (outcome_.wrongHandles > 0) broken("6 returned", "", "it used a handle that was not open");
        if (outcome_.end == Outcome::End::crashed || lostHoldOfTool()) return;
        for (const ProcessId child : outcome_.machine.processes.runningChildrenOf(outcome_.machine.caller)) {
            const Process* process = outcome_.machine.processes.find(child);
            if (process->tool) broken("6 returned", "", process->commandLine + " still runs");
        }
    }

    /// The updater neither waited for the archive tool nor ended it, as the call failed. The exit code, which then says
    /// that the tool still runs, is reported as the failure.
    bool lostHoldOfTool() const {
        return std::any_of(outcome_.calls.begin(), outcome_.calls.end(), [](const Call& call) {
            const bool isHold = call.operation == Operation::endProcess || call.operation == Operation::waitForEnd;
            return isHold && call.isHarmed && call.result != 0;
        });
    }

    void steady() {
        std::uint32_t percent = 0;
        for (const ReportedStep& step : outcome_.steps) {
            // A file's and its bytes' percentages are rounded down in different ways.
            if (step.percent + 1 < percent && step.text != timetable::preparingCompletePackage.text)
                broken("7 steady", "", "the percentage falls to " + std::to_string(step.percent));
            percent = step.percent;
        }
        const std::size_t most = mostCalls(setting_.releases);
        if (outcome_.calls.size() > most)
            broken("7 steady", "", std::to_string(outcome_.calls.size()) + " calls, more than " + std::to_string(most));
    }

    const Outcome& outcome_;
    const Setting& setting_;
    const DocumentedFailures& documented_;
    WayBack wayBack_;
    Keys old_;
    Keys new_;
    Keys newFolders_;
    std::vector<std::string> others_;
    std::vector<Breach> breaches_;
};

bool changesTree(Intrusion::Kind kind) {
    switch (kind) {
        case Intrusion::Kind::create:
        case Intrusion::Kind::createFolder:
        case Intrusion::Kind::remove:
        case Intrusion::Kind::rename:
        case Intrusion::Kind::setReadOnly:
        case Intrusion::Kind::clearReadOnly:
        case Intrusion::Kind::plantJunction:
        case Intrusion::Kind::plantFileLink:
        case Intrusion::Kind::plantFolderLink:
            return true;
        default:
            return false;
    }
}

/// True for an empty folder where a file is about to be moved aside: it takes nothing from the file, which stays or
/// returns.
bool isFolderInItsWay(const Outcome& outcome, const PlannedAction& planned) {
    const auto* intrusion = std::get_if<Intrusion>(&planned.action);
    if (intrusion->kind != Intrusion::Kind::createFolder) return false;
    const bool isSwapping = planned.trigger.number >= outcome.firstCallOf(kLaunchingText);
    const std::string_view folder = isSwapping ? place::kStaging : place::kBackup;
    return isAtOrBelow(treeKeyOf(intrusion->path), treeKeyOf(folder));
}

}  // namespace

std::vector<Breach> brokenInvariants(const Outcome& outcome, const DocumentedFailures& documented) {
    return Judge(outcome, documented).judge();
}

std::vector<std::string> changedByOthers(const Outcome& outcome) {
    std::vector<std::string> changed;
    for (std::size_t i = 0; i < outcome.scenario.plan.size(); ++i) {
        const auto* intrusion = std::get_if<Intrusion>(&outcome.scenario.plan[i].action);
        if (intrusion == nullptr || outcome.timesMet[i] == 0 || !changesTree(intrusion->kind)) continue;
        if (isFolderInItsWay(outcome, outcome.scenario.plan[i])) continue;
        changed.push_back(treeKeyOf(intrusion->path));
        if (intrusion->kind == Intrusion::Kind::rename) changed.push_back(treeKeyOf(intrusion->second));
    }
    // What is written to a link is written to where it leads.
    const Tree& before = outcome.scenario.setting->before;
    for (std::size_t i = changed.size(); i > 0; --i) {
        const Node* node = find(before, changed[i - 1]);
        if (node != nullptr && !node->linkTarget.empty()) changed.push_back(treeKeyOf(node->linkTarget));
    }
    // What was changed in the work folder moves on to the installation.
    for (std::size_t i = changed.size(); i > 0; --i) {
        std::string relative;
        if (isWorkFolder(changed[i - 1]) && relativeKeyOf(changed[i - 1], relative) && !relative.empty())
            changed.push_back(treeKeyOf(place::kInstallation) + "/" + relative);
    }
    return changed;
}

bool saysNewRelease(const Outcome& outcome) {
    return outcome.code == 0 || (outcome.code == 28 && outcome.sentence.ends_with(kNotRestored));
}

std::size_t mostCalls(const ReleasePair& releases) {
    constexpr std::size_t forAnyUpdate = 400;
    constexpr std::size_t forEachFile = 120;
    return forAnyUpdate +
           forEachFile * (releases.installed.files.size() + releases.offered.files.size() + releases.players.size());
}

}  // namespace vorthmere::update::simulation
