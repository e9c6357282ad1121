#include "tests/contract/differential/differences.h"

#include <optional>

#include "tests/contract/differential/sides.h"
#include "tests/simulation/names.h"

namespace vorthmere::update::contract {
namespace {

using simulation::EntryView;
using simulation::Machine;

std::optional<EntryView> entryAt(const Machine& machine, const std::string& path) {
    return machine.files.find(ModelSide::full(path));
}

/// The path that the step writes to.
const std::string& targetOf(const Step& step) {
    const bool hasTarget = step.action == Action::moveFile || step.action == Action::copyFile;
    return hasTarget ? step.second : step.path;
}

bool overwrites(const Step& step) {
    return step.action == Action::write || step.action == Action::moveFile || step.action == Action::copyFile ||
           step.action == Action::hold;
}

bool isRefusedByWindowsAlone(const Comparison& step, std::uint32_t error) {
    return step.model.error == error && step.real.error == 0;
}

bool overwritesWith(const Comparison& step, std::uint32_t attribute) {
    const auto target = entryAt(step.before, targetOf(step.step));
    return overwrites(step.step) && isRefusedByWindowsAlone(step, 5) && target && (target->attributes & attribute) != 0;
}

bool movesAnOpenFolder(const Comparison& step) {
    const auto source = entryAt(step.before, step.step.path);
    return step.step.action == Action::moveFile && isRefusedByWindowsAlone(step, 5) && source && source->isFolder();
}

std::string keyOfPath(const std::string& path) {
    return simulation::keyOf(simulation::fullPathOf(ModelSide::full(path), "C:/").text);
}

bool movesBelowItself(const Comparison& step) {
    const bool bothRefuse = step.model.error != 0 && step.real.error != 0;
    return step.step.action == Action::moveFile && bothRefuse &&
           keyOfPath(step.step.second).starts_with(keyOfPath(step.step.path) + "/");
}

bool copiesToAFoldersName(const Comparison& step) {
    return step.step.action == Action::copyToNew && step.model.error == 5 && step.real.error == 80;
}

bool deletesAMappedFile(const Comparison& step) {
    const auto id = step.before.files.entryOf(ModelSide::full(step.step.path));
    return step.step.action == Action::deleteFile && isRefusedByWindowsAlone(step, 5) &&
           step.before.files.disk.at(id).mappings > 0;
}

/// Two reasons forbid the step, and Windows and Wine report different ones.
bool hasTwoReasons(const Comparison& step) {
    const auto id = step.before.files.entryOf(ModelSide::full(targetOf(step.step)));
    if (id == simulation::kNoEntry || !overwrites(step.step)) return false;
    const simulation::Entry& target = step.before.files.disk.at(id);
    const bool isMapped =
        (step.model.error == 32 || step.model.error == 5) && step.real.error == 1224 && target.mappings > 0;
    const bool isReadOnly = step.model.error == 5 && step.real.error == 32 && target.isReadOnly();
    return isMapped || isReadOnly;
}

bool listsAFile(const Comparison& step) {
    return step.step.action == Action::listFolder && step.model.error == 267 && step.real.error == 123;
}

bool passesALock(const Comparison& step) {
    return isRefusedByWindowsAlone(step, 33);
}

bool makesAFolderReadOnly(const Comparison& step) {
    const auto entry = entryAt(step.after, step.step.path);
    return step.step.action == Action::setAttributes && step.model.error == 0 && entry && entry->isFolder() &&
           step.step.attributes == 1;
}

bool leavesAPendingName(const Comparison& step) {
    const auto entry = entryAt(step.after, step.step.path);
    return step.model.error == 0 && entry && entry->isDeletePending;
}

constexpr Difference kDifferences[] = {
    {"root writes read-only files", "a read-only file is one without a Unix permission, which root needs not",
     [](const Comparison& step) { return overwritesWith(step, simulation::attribute::readOnly); }},
    {"hidden files are written over", "Wine does not look at the attribute",
     [](const Comparison& step) { return overwritesWith(step, simulation::attribute::hidden); }},
    {"folders move with open files", "Unix moves folders whatever is open in them", movesAnOpenFolder},
    {"folders moved below themselves", "Windows and Wine refuse it for different reasons", movesBelowItself},
    {"a new copy by a folder's name", "Wine finds the name taken before it looks at what has it", copiesToAFoldersName},
    {"mapped files are deleted", "Wine looks at mapped programs, not at mapped data", deletesAMappedFile},
    {"the other one of two reasons", "Wine looks at mappings before, and at Unix permissions after the sharing",
     hasTwoReasons, false, true},
    {"listing a file", "Wine takes the error of a name that is none", listsAFile},
    {"locks do not keep off readers and writers", "Wine's locks keep off other locks", passesALock},
    {"folders are not read-only", "Wine does not keep the attribute", makesAFolderReadOnly, true},
    {"deleted names stay open to all", "Wine deletes a held file when it is closed and does not mark it before",
     leavesAPendingName, true},
};

}  // namespace

std::span<const Difference> knownDifferences() {
    return kDifferences;
}

}  // namespace vorthmere::update::contract
