#include "publisher/console.h"
#include "publisher/report.h"

namespace vorthmere::publish {
namespace {

std::string numberOf(std::uint32_t release) {
    return "release " + std::to_string(release);
}

void printReplaced(const ReleaseSummary& summary, std::ostream& output) {
    if (summary.mendedObjects != 0)
        output << "  replaced:         " << countOf(summary.mendedObjects, "damaged object") << '\n';
    if (summary.mendedPackage) output << "  replaced:         the complete package, which was another one\n";
    if (summary.mendedInventory) output << "  replaced:         the inventory, which was another one\n";
}

void printPrevious(const ReleaseSummary& summary, bool isDryRun, std::ostream& output) {
    if (!summary.previousRelease) {
        output << "  the channel holds no earlier release to update from\n";
        return;
    }
    output << "  from " << numberOf(*summary.previousRelease) << ": ";
    if (!summary.previousFault.empty())
        output << "what an updater fetches is not known. " << summary.previousFault;
    else
        output << "an updater fetches " << sizeOf(summary.bytesFromPrevious)
               << (summary.incrementalFromPrevious ? " as changed files" : " as the complete package")
               << (isDryRun ? ", or the complete package if that is no larger" : "");
    output << '\n';
}

void printRelease(const ReleaseRequest& request, const ReleaseSummary& summary, std::ostream& output) {
    output << "Release " << request.details.release << " (" << request.details.version << ") "
           << (request.isDryRun ? "can be published; nothing was written." : "is published.") << '\n';
    output << "  files:            " << countOf(summary.files, "file") << ", " << sizeOf(summary.bytes) << '\n';
    output << "  distinct objects: " << summary.distinctObjects << '\n';
    output << "  new objects:      " << summary.newObjects << ", " << sizeOf(summary.newObjectBytes) << '\n';
    printReplaced(summary, output);
    if (!request.isDryRun) output << "  complete package: " << sizeOf(summary.packageBytes) << '\n';
    printPrevious(summary, request.isDryRun, output);
}

void printCheck(const ChannelReport& report, bool isQuiet, std::ostream& output) {
    for (const std::string& note : report.notes)
        if (!isQuiet) output << "Note: " << note << '\n';
    for (const std::string& fault : report.faults)
        output << fault << '\n';
    if (!report.faults.empty())
        output << "The channel has " << countOf(report.faults.size(), "fault") << ".\n";
    else if (!isQuiet)
        output << "The channel is sound: every updater can install its release.\n";
}

void printDifference(const UpdatePlan& plan, bool listFiles, std::ostream& output) {
    const ReleaseDifference& difference = plan.difference;
    if (listFiles) {
        for (const update::InventoryEntry& entry : difference.fetched)
            output << "  fetch " << entry.path << ", " << sizeOf(entry.size) << '\n';
        for (const std::string& path : difference.removed)
            output << "  remove " << path << '\n';
    }
    output << "  reused:           " << countOf(difference.reused.size(), "file") << ", "
           << sizeOf(difference.bytesReused) << '\n';
    output << "  fetched:          " << countOf(difference.fetched.size(), "file") << ", "
           << sizeOf(difference.bytesToFetch) << '\n';
    output << "  removed:          " << countOf(difference.removed.size(), "file") << '\n';
    output << "  complete package: " << sizeOf(plan.target.size) << '\n';
    output << (plan.incremental
                   ? "The update is incremental: the changed files are smaller than the complete package.\n"
                   : "The update takes the complete package: the changed files are not smaller.\n");
}

void printPlan(const UpdatePlan& plan, bool listFiles, std::ostream& output) {
    if (plan.fromRelease >= plan.target.release) {
        output << "Release " << plan.fromRelease << " is not older than " << numberOf(plan.target.release)
               << " of the channel: an updater does nothing.\n";
        return;
    }
    output << (plan.fromRelease != 0 ? "From " + numberOf(plan.fromRelease) : "From this folder") << " to "
           << numberOf(plan.target.release) << " (" << plan.target.version << "):\n";
    if (plan.packageReason.empty()) {
        printDifference(plan, listFiles, output);
        return;
    }
    output << "  complete package: " << sizeOf(plan.target.size) << '\n';
    output << "The update takes the complete package: " << plan.packageReason << '\n';
}

void printGarbage(const GarbageRequest& request, const GarbageSummary& summary, std::ostream& output) {
    for (const std::string& name : summary.removedFiles)
        output << "  " << name << '\n';
    output << (request.isDryRun ? "Would remove " : "Removed ") << countOf(summary.removedFiles.size(), "file") << ", "
           << sizeOf(summary.removedBytes) << "; " << countOf(summary.keptReleases.size(), "release")
           << (summary.keptReleases.size() == 1 ? " stays." : " stay.") << '\n';
}

}  // namespace

void printReport(const Command& command, const Outcome& outcome, std::ostream& output) {
    switch (command.action) {
        case Action::build:
            if (outcome.hasSucceeded && !command.isQuiet) printRelease(command.build, outcome.release, output);
            break;
        case Action::check:
            printCheck(outcome.channel, command.isQuiet, output);
            break;
        case Action::plan:
            if (outcome.hasSucceeded) printPlan(outcome.plan, command.plan.listFiles, output);
            break;
        case Action::collectGarbage:
            if (outcome.hasSucceeded && (!command.isQuiet || command.garbage.isDryRun))
                printGarbage(command.garbage, outcome.garbage, output);
            break;
    }
}

}  // namespace vorthmere::publish
