#include "tests/simulation/explorer/known_losses.h"

#include <algorithm>

#include "tests/simulation/explorer/aftermath.h"
#include "tests/simulation/explorer/way_back.h"

namespace vorthmere::update::simulation {
namespace {

std::string installed(std::string_view path) {
    return treeKeyOf(place::kInstallation) + "/" + treeKeyOf(path);
}

bool contains(const Release& release, std::string_view key) {
    return std::any_of(release.files.begin(), release.files.end(),
                       [key](const ReleaseFile& file) { return installed(file.path) == key; });
}

bool wasFile(const Outcome& outcome, std::string_view key) {
    const auto before = outcome.scenario.setting->before.find(key);
    return before != outcome.scenario.setting->before.end() && before->second.isFile();
}

/// The same path in the installation, whichever folder of the update it is in.
bool isSamePlace(std::string_view path, std::string_view key) {
    std::string left;
    std::string right;
    return relativeKeyOf(path, left) && relativeKeyOf(key, right) && left == right;
}

bool isInvariant(const Breach& breach, char number) {
    return breach.invariant.front() == number;
}

// A path that is wrongly not found while files are moved aside is passed over.

bool isVolumeAway(const Outcome& outcome) {
    const Plan& plan = outcome.scenario.plan;
    return std::any_of(plan.begin(), plan.end(), [](const PlannedAction& planned) {
        const auto* intrusion = std::get_if<Intrusion>(&planned.action);
        return intrusion != nullptr && intrusion->kind == Intrusion::Kind::takeVolumeAway;
    });
}

bool isOverlooked(const Outcome& outcome, const Breach& breach) {
    const std::size_t first = outcome.firstCallOf(kInstallingText);
    const bool isAway = isVolumeAway(outcome);
    return std::any_of(outcome.calls.begin(), outcome.calls.end(), [&](const Call& call) {
        return call.number >= first && (call.isHarmed || isAway) &&
               (call.operation == Operation::entryFacts || call.operation == Operation::targetFacts) &&
               error::saysNothingIsThere(call.result) && isSamePlace(call.subject, breach.subject);
    });
}

// The swapped installation after a failed relaunch, when it is rolled back itself.

bool isFailedSwap(const Outcome& outcome, const Breach& breach) {
    const bool isSwapping = std::any_of(outcome.calls.begin(), outcome.calls.end(), [](const Call& call) {
        return call.operation == Operation::startProgram && call.result != 0;
    });
    return isSwapping && WayBack(outcome).begin() < outcome.calls.size() &&
           (isInvariant(breach, '2') || isInvariant(breach, '9'));
}

// A file that stood in a new file's place belongs to no release, so the swapped installation does not bring it back.

bool isPlayersUnderNewFile(const Outcome& outcome, const Breach& breach) {
    const ReleasePair& releases = outcome.scenario.setting->releases;
    return outcome.code == 28 && isInvariant(breach, '3') && wasFile(outcome, breach.subject) &&
           contains(releases.offered, breach.subject) && !contains(releases.installed, breach.subject);
}

bool isFolderOfNewRelease(const Outcome& outcome, const Breach& breach) {
    const auto now = outcome.after.find(breach.subject);
    const auto& files = outcome.scenario.setting->releases.offered.files;
    return outcome.code == 28 && isInvariant(breach, '3') && now != outcome.after.end() && !now->second.isFile() &&
           std::any_of(files.begin(), files.end(), [&breach](const ReleaseFile& file) {
               return isAtOrBelow(installed(file.path), breach.subject);
           });
}

// Paths are moved aside in byte order, so that the first spelling of a name is the one that is kept.

bool isNewInOtherLetters(const Outcome& outcome, std::string_view key, const Node& now) {
    const auto& files = outcome.scenario.setting->releases.offered.files;
    return outcome.code == 28 && std::any_of(files.begin(), files.end(), [&](const ReleaseFile& file) {
               return installed(file.path) == key && now.isFile() && *now.content == file.content &&
                      !now.path.ends_with(file.path);
           });
}

bool isOtherSpelling(const Outcome& outcome, const Breach& breach) {
    const Tree& before = outcome.scenario.setting->before;
    const auto then = before.find(breach.subject);
    const auto now = outcome.after.find(breach.subject);
    if (!isInvariant(breach, '3') || now == outcome.after.end()) return false;
    if (isNewInOtherLetters(outcome, breach.subject, now->second)) return true;
    return then != before.end() && sameContent(then->second, now->second) &&
           then->second.attributes == now->second.attributes && then->second.path != now->second.path;
}

// A file in whose place the new release has a folder.

bool isFolderInPlaceOfFile(const Outcome& outcome) {
    const Tree& before = outcome.scenario.setting->before;
    return std::any_of(before.begin(), before.end(), [&outcome](const auto& entry) {
        const auto now = outcome.after.find(entry.first);
        return entry.second.isFile() && now != outcome.after.end() && !now->second.isFile();
    });
}

bool isFileUnderNewFolder(const Outcome& outcome, const Breach& breach) {
    const auto& files = outcome.scenario.setting->releases.offered.files;
    if (isInvariant(breach, '8')) return isFolderInPlaceOfFile(outcome);
    return isInvariant(breach, '3') && wasFile(outcome, breach.subject) &&
           std::any_of(files.begin(), files.end(), [&breach](const ReleaseFile& file) {
               return installed(file.path) != breach.subject && isAtOrBelow(installed(file.path), breach.subject);
           });
}

// A link that the system does not report.

bool isUntoldLink(const Outcome& outcome, const Breach&) {
    const Tree& before = outcome.scenario.setting->before;
    return std::any_of(outcome.calls.begin(), outcome.calls.end(), [&before](const Call& call) {
        const auto then = before.find(treeKeyOf(call.subject));
        return call.result != 0 && call.operation == Operation::entryAttributes && then != before.end() &&
               (then->second.attributes & attribute::reparsePoint) != 0;
    });
}

// A link that comes after the test for links.

/// True when no test for links came after this call, or files had moved through the link before.
bool isFollowedUntested(const Outcome& outcome, const std::string& link, std::size_t call) {
    const auto isTestOrMove = [&link](const Call& later) {
        if (later.operation == Operation::entryAttributes) return treeKeyOf(later.subject) == link;
        return later.operation == Operation::moveFile &&
               (isAtOrBelow(treeKeyOf(later.subject), link) || isAtOrBelow(treeKeyOf(later.second), link));
    };
    const auto begin = outcome.calls.begin() + static_cast<std::ptrdiff_t>(std::min(call, outcome.calls.size()));
    const auto first = std::find_if(begin, outcome.calls.end(), isTestOrMove);
    return first == outcome.calls.end() || first->operation == Operation::moveFile;
}

bool isLater(const Outcome& outcome, const PlannedAction& planned) {
    const auto* intrusion = std::get_if<Intrusion>(&planned.action);
    if (intrusion == nullptr) return false;
    const bool isLink = intrusion->kind == Intrusion::Kind::plantJunction ||
                        intrusion->kind == Intrusion::Kind::plantFileLink ||
                        intrusion->kind == Intrusion::Kind::plantFolderLink;
    // The rollback does not test for links at all, even when a link was what began it.
    const bool isTakenBack = WayBack(outcome).begin() < outcome.calls.size();
    return isLink && (isTakenBack || isFollowedUntested(outcome, treeKeyOf(intrusion->path), planned.trigger.number));
}

bool isLinkAfterTheTest(const Outcome& outcome, const Breach& breach) {
    const Plan& plan = outcome.scenario.plan;
    return isAtOrBelow(breach.subject, treeKeyOf(place::kElsewhere)) &&
           std::any_of(plan.begin(), plan.end(),
                       [&outcome](const PlannedAction& planned) { return isLater(outcome, planned); });
}

// The power goes after the new list could not be written through to the disk.

bool isUnflushedList(const Outcome& outcome, const Breach& breach) {
    const Plan& plan = outcome.scenario.plan;
    const bool isPowerLost = std::any_of(plan.begin(), plan.end(), [](const PlannedAction& planned) {
        return std::holds_alternative<PowerLoss>(planned.action);
    });
    const bool isUnflushed = std::any_of(outcome.calls.begin(), outcome.calls.end(), [](const Call& call) {
        return call.operation == Operation::flushFile && call.result != 0;
    });
    return isInvariant(breach, '8') && isPowerLost && isUnflushed;
}

bool never(const Outcome&, const Breach&) {
    return false;
}

/// True when a scenario breaks something that a loss explains.
bool happensIn(const Scenario& scenario, bool (*explains)(const Outcome&, const Breach&)) {
    const DocumentedFailures documented("# When an update fails\n| | |\n|-|-|\n| 0 | |\n");
    const Outcome outcome = play(scenario);
    std::vector<Breach> breaches = brokenInvariants(outcome, documented);
    for (Breach& breach : Aftermath(documented).brokenInvariants(outcome))
        breaches.push_back(std::move(breach));
    return std::any_of(breaches.begin(), breaches.end(),
                       [&](const Breach& breach) { return explains(outcome, breach); });
}

Trigger nthCall(Operation operation, std::string subject, std::size_t number) {
    return {operation, std::move(subject), number};
}

std::string staged(std::string_view path) {
    return std::string(place::kStaging) + "/" + std::string(path);
}

std::string inInstallation(std::string_view path) {
    return std::string(place::kInstallation) + "/" + std::string(path);
}

/// The last file of the sample releases cannot be moved in.
Scenario takenBack(Way way) {
    return Scenario{settingOf(sampleReleases(), way), {}}.with(nthCall(Operation::moveFile, staged("Vorthmere.exe"), 0),
                                                               Fault{error::accessDenied});
}

Outcome withFileAppearing() {
    Intrusion intrusion;
    intrusion.kind = Intrusion::Kind::create;
    intrusion.path = inInstallation("data/new.pak");
    intrusion.second = "an intruder's";
    ReleasePair releases = smallestReleases();
    releases.offered = releaseOf(42, {{"data/a.pak", "a of 42"}, {"data/new.pak", "new of 42"}});
    return play(Scenario{settingOf(std::move(releases), Way::incremental), {}}.with(
        nthCall(Operation::moveFile, staged("data/new.pak"), 0), intrusion));
}

bool isNowhere(const Tree& tree, std::string_view content) {
    return std::none_of(tree.begin(), tree.end(), [content](const auto& entry) {
        return entry.second.isFile() && *entry.second.content == content;
    });
}

/// The first wanted call after this many moves; the last call when there is none.
Trigger firstCall(const Outcome& good, std::size_t moves, bool (*isWanted)(const Call&)) {
    std::size_t number = good.firstCallOf(kInstallingText);
    for (std::size_t moved = 0; number + 1 < good.calls.size(); ++number) {
        if (moved >= moves && isWanted(good.calls[number])) break;
        if (good.calls[number].operation == Operation::moveFile) ++moved;
    }
    return {std::nullopt, "", number};
}

Scenario smallUpdate() {
    return {settingOf(smallestReleases(), Way::incremental), {}};
}

Scenario withUnknownStatus() {
    const Scenario calm = smallUpdate();
    return calm.with(firstCall(play(calm), 1, [](const Call& call) { return call.operation == Operation::entryFacts; }),
                     Fault{error::accessDenied});
}

Scenario withOverlookedFile() {
    const Scenario calm = smallUpdate();
    const auto isQuery = [](const Call& call) {
        return call.operation == Operation::entryFacts && treeKeyOf(call.subject) == installed("data/a.pak");
    };
    return calm.with(firstCall(play(calm), 0, isQuery), Fault{error::fileNotFound});
}

Scenario withLateLink() {
    Intrusion junction;
    junction.kind = Intrusion::Kind::plantJunction;
    junction.path = inInstallation("data");
    junction.second = std::string(place::kElsewhere) + "/data";
    const Scenario calm = smallUpdate();
    const auto isMove = [](const Call& call) {
        return call.operation == Operation::moveFile && call.subject == staged("data/a.pak");
    };
    return calm.with(firstCall(play(calm), 0, isMove), junction);
}

}  // namespace

const std::vector<KnownLoss>& knownLosses() {
    static const std::vector<KnownLoss> losses = {
        {"overlooked while moving aside", "docs/failures.md",
         "A path that the system wrongly does not find is not moved aside: the new file replaces it, or it stays.",
         isOverlooked, [] { return happensIn(withOverlookedFile(), isOverlooked); }},
        {"appears before moving in", "docs/failures.md",
         "A file that another program puts in a new file's place after the old ones were moved aside is replaced.",
         never,
         [] {
             const Outcome outcome = withFileAppearing();
             return outcome.code == 0 && isNowhere(outcome.after, "an intruder's");
         }},
        {"swap that fails", "docs/failures.md",
         "When the new game does not start and the swap back fails too, the old files that had returned are removed.",
         isFailedSwap,
         [] {
             return happensIn(Scenario{settingOf(swappableReleases(), Way::relaunchFails), {}}.with(
                                  nthCall(Operation::moveFile, std::string(place::kBackup) + "/Vorthmere.exe", 0),
                                  Fault{error::accessDenied}),
                              isFailedSwap);
         }},
        {"player's file and the swap", "docs/failures.md",
         "A file that no release lists and in whose place a new one went stays in the backup when the releases are "
         "swapped back, and the next update removes the backup.",
         isPlayersUnderNewFile,
         [] {
             ReleasePair releases = swappableReleases();
             releases.players.push_back({"Readme.txt", "a player's"});
             return happensIn({settingOf(std::move(releases), Way::relaunchFails), {}}, isPlayersUnderNewFile);
         }},
        {"folders after the swap", "docs/failures.md",
         "The new release's folders stay, empty, when the releases are swapped back.", isFolderOfNewRelease,
         [] {
             return happensIn({settingOf(swappableReleases(), Way::relaunchFails), {}}, isFolderOfNewRelease);
         }},
        {"spelling after the way back", "docs/failures.md",
         "A file that the new release writes in other letters keeps the new spelling when it returns.", isOtherSpelling,
         [] { return happensIn(takenBack(Way::incremental), isOtherSpelling); }},
        {"file that becomes a folder", "docs/publishing.md",
         "When the new folder cannot be removed on the way back, the file cannot return, and further updates end with "
         "27 "
         "until it is brought back by hand.",
         isFileUnderNewFolder,
         [] {
             return happensIn(takenBack(Way::incremental)
                                  .with(nthCall(Operation::removeEmptyFolder, inInstallation("mods"), 0),
                                        Fault{error::accessDenied}),
                              isFileUnderNewFolder);
         }},
        {"link that is not told", "docs/failures.md",
         "Only what is surely seen to be a link is refused: one whose attributes cannot be read is followed.",
         isUntoldLink,
         [] {
             return happensIn(Scenario{settingOf(sampleReleases(), Way::linkedFolder), {}}.with(
                                  nthCall(Operation::entryAttributes, inInstallation("data"), 0),
                                  Fault{.error = error::fileNotFound, .always = true}),
                              isUntoldLink);
         }},
        {"link after the test", "docs/failures.md",
         "A link that another program plants after its place was tested is followed.", isLinkAfterTheTest,
         [] { return happensIn(withLateLink(), isLinkAfterTheTest); }},
        {"list that is not flushed", "README.md",
         "When the new list cannot be written through to the disk and then the power goes, the list may be empty, and "
         "updates end with 25 until the previous release is brought back by hand.",
         isUnflushedList,
         [] {
             const Scenario calm = smallUpdate();
             const std::size_t last = play(calm).calls.size() - 1;
             return happensIn(calm.with(nthCall(Operation::flushFile, staged("KVN_MANAGED_FILES.txt"), 0),
                                        Fault{error::accessDenied})
                                  .with({std::nullopt, "", last}, PowerLoss{Extent::none, {Fate::drop}}),
                              isUnflushedList);
         }},
        {"status that is not known", "docs/failures.md",
         "A status that cannot be told ends the program; what was moved aside until then stays in the backup.", never,
         [] {
             const Outcome outcome = play(withUnknownStatus());
             return outcome.end == Outcome::End::threw && outcome.exception.find("exists") != std::string::npos &&
                    outcome.after.find(treeKeyOf(place::kBackup) + "/kvnupdater.exe") != outcome.after.end();
         }},
    };
    return losses;
}

const KnownLoss* knownLossOf(const Outcome& outcome, const Breach& breach) {
    const std::vector<KnownLoss>& losses = knownLosses();
    const auto found = std::find_if(losses.begin(), losses.end(),
                                    [&](const KnownLoss& loss) { return loss.explains(outcome, breach); });
    return found == losses.end() ? nullptr : &*found;
}

}  // namespace vorthmere::update::simulation
