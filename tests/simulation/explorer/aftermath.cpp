#include "tests/simulation/explorer/aftermath.h"

#include <algorithm>
#include <memory>

#include "tests/simulation/explorer/known_losses.h"
#include "tests/simulation/explorer/recovery.h"
#include "tests/simulation/explorer/way_back.h"
#include "update/release_channel.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::size_t kMostAnswers = 20000;
constexpr std::uint64_t kRoomyDisk = std::uint64_t{1} << 40;

/// The setting with another machine to begin with.
SettingPointer beginningWith(const Setting& setting, const Machine& machine, Tree tree, std::uint32_t release) {
    auto next = std::make_shared<Setting>(setting);
    next->machine = machine;
    next->before = std::move(tree);
    next->arguments.parentProcessId = 0;
    next->arguments.currentRelease = release;
    if (release >= setting.releases.offered.number) next->way = Way::current;
    return next;
}

bool lacksMarker(const Tree& tree) {
    for (const std::string_view name : {kGameExecutableName, kUpdaterExecutableName, kManagedFileListName}) {
        const auto found = tree.find(treeKeyOf(place::kInstallation) + "/" + treeKeyOf(name));
        if (found == tree.end() || !found->second.isFile()) return true;
    }
    return false;
}

/// True when the files of one release are all in the installation.
bool isWhole(const Release& release, const Tree& tree) {
    return std::all_of(release.files.begin(), release.files.end(), [&tree](const ReleaseFile& file) {
        const auto found = tree.find(treeKeyOf(place::kInstallation) + "/" + treeKeyOf(file.path));
        return found != tree.end() && found->second.isFile() && *found->second.content == file.content;
    });
}

/// True when everything outside the work folder is as it was.
bool isUntouched(const Tree& before, const Tree& tree) {
    const std::string workFolder = treeKeyOf(place::kWorkFolder);
    return std::all_of(before.begin(), before.end(), [&](const auto& entry) {
        if (isAtOrBelow(entry.first, workFolder)) return true;
        const auto now = tree.find(entry.first);
        return now != tree.end() && same(entry.second, now->second);
    });
}

}  // namespace

void makePeace(Machine& machine) {
    const std::string everything = "C:/";
    const auto let = [&machine, &everything](Intrusion::Kind kind) {
        Intrusion intrusion;
        intrusion.kind = kind;
        intrusion.path = everything;
        static_cast<void>(act(machine, intrusion));
    };
    let(Intrusion::Kind::bringVolumeBack);
    let(Intrusion::Kind::letChildrenRun);
    let(Intrusion::Kind::release);
    let(Intrusion::Kind::leaveFolder);
    // A mapped file may have another name by now.
    Disk& disk = machine.files.disk;
    for (EntryId id = 0; id < disk.count(); ++id)
        disk.at(id).mappings = 0;
    machine.files.volumeOf(everything).freeBytes = kRoomyDisk;
    for (const ProcessId process : machine.processes.running())
        if (process != machine.otherProgram && process != machine.caller)
            machine.processes.end(machine.files, process, 0);
}

int Aftermath::calmCode(const SettingPointer& setting) {
    const auto known = calmCodes_.find(setting);
    if (known != calmCodes_.end()) return known->second;
    ++runs_;
    return calmCodes_[setting] = play({setting, {}}).code;
}

std::vector<Breach> Aftermath::brokenInvariants(const Outcome& outcome) {
    if (outcome.end == Outcome::End::hung) return {};
    const SettingPointer& setting = outcome.scenario.setting;
    Machine machine = outcome.machine;
    makePeace(machine);
    Tree tree = treeOf(machine);

    Question question;
    question.setting = setting;
    question.tree = fingerprintOf(tree);
    // The game tells the number of the release that is there.
    const bool isNew = isWhole(setting->releases.offered, tree);
    question.release = isNew ? setting->releases.offered.number : setting->arguments.currentRelease;
    question.mustComplete = changedByOthers(outcome).empty();
    const bool isFinished = outcome.end == Outcome::End::returned && saysNewRelease(outcome);
    question.needsRecovery = !isFinished && !isNew && question.mustComplete && !isUntouched(setting->before, tree);

    // Settings that were drawn never come again.
    if (answers_.size() > kMostAnswers) {
        answers_.clear();
        calmCodes_.clear();
    }
    const auto known = answers_.find(question);
    if (known != answers_.end()) return known->second;
    return answers_[question] = answer(outcome, machine, std::move(tree), question);
}

std::vector<Breach> Aftermath::answer(const Outcome& outcome, const Machine& machine, Tree tree,
                                      const Question& question) {
    std::vector<Breach> breaches;
    nextRun(outcome, machine, tree, question, "8 converges", breaches);
    if (question.needsRecovery) recovery(outcome, machine, question, breaches);
    return breaches;
}

void Aftermath::nextRun(const Outcome& outcome, const Machine& machine, const Tree& tree, const Question& question,
                        std::string_view invariant, std::vector<Breach>& breaches) {
    const SettingPointer& setting = outcome.scenario.setting;
    const SettingPointer next = beginningWith(*setting, machine, tree, question.release);
    ++runs_;
    const Outcome result = play({next, {}});
    const auto broken = [&](const std::string& what) { breaches.push_back({std::string(invariant), "", what}); };

    const bool canStart = setting->way != Way::relaunchFails;
    const int currentCode = canStart ? 0 : 12;
    // Nothing runs any more that it would wait for.
    const int calm = setting->way == Way::lastingGame ? 0 : calmCode(setting);
    const int expected = isCurrent(next->way) ? currentCode : calm;
    const bool refuses = result.end == Outcome::End::returned && result.code == 10 && lacksMarker(tree);
    if (question.mustComplete && !refuses && (result.end != Outcome::End::returned || result.code != expected))
        broken("the next run ends with " + describe(result));
    for (const Breach& breach : simulation::brokenInvariants(result, documented_))
        if (knownLossOf(result, breach) == nullptr)
            broken("the next run (" + describe(result) + ") breaks \"" + breach.invariant + "\": " + breach.what);
}

void Aftermath::recovery(const Outcome& outcome, Machine machine, const Question& question,
                         std::vector<Breach>& breaches) {
    constexpr std::string_view invariant = "9 recoverable";
    const Setting& setting = *outcome.scenario.setting;
    const auto broken = [&](const std::string& key, const std::string& what) {
        breaches.push_back({std::string(invariant), key, what});
    };
    for (const std::string& path : recover(machine))
        broken(treeKeyOf(path), path + " cannot be brought back");
    const Tree tree = treeOf(machine);
    for (const ReleaseFile& file : setting.releases.installed.files) {
        const std::string key = treeKeyOf(place::kInstallation) + "/" + treeKeyOf(file.path);
        const auto before = setting.before.find(key);
        const auto now = tree.find(key);
        if (before != setting.before.end() && (now == tree.end() || !sameContent(before->second, now->second)))
            broken(key, file.path + " is not back after the recovery");
    }
    if (breaches.empty()) nextRun(outcome, machine, tree, question, invariant, breaches);
}

}  // namespace vorthmere::update::simulation
