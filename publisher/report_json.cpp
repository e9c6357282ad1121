#include <nlohmann/json.hpp>

#include "publisher/report.h"

namespace vorthmere::publish {
namespace {

using Json = nlohmann::ordered_json;

Json linesOf(const std::string& text) {
    Json lines = Json::array();
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

Json filesOf(const std::vector<update::InventoryEntry>& entries) {
    Json files = Json::array();
    for (const update::InventoryEntry& entry : entries)
        files.push_back({{"path", entry.path}, {"size", entry.size}, {"sha256", entry.sha256}});
    return files;
}

Json previousOf(const ReleaseSummary& summary) {
    if (!summary.previousRelease) return nullptr;
    Json previous = {{"release", *summary.previousRelease}};
    if (!summary.previousFault.empty()) {
        previous["fault"] = summary.previousFault;
        return previous;
    }
    previous["bytesToFetch"] = summary.bytesFromPrevious;
    previous["incremental"] = summary.incrementalFromPrevious;
    return previous;
}

void addRelease(const ReleaseRequest& request, const Outcome& outcome, Json& report) {
    const ReleaseSummary& summary = outcome.release;
    report["notes"] = summary.notes;
    report["release"] = request.details.release;
    report["dryRun"] = request.isDryRun;
    if (!outcome.hasSucceeded) return;
    report["files"] = summary.files;
    report["bytes"] = summary.bytes;
    report["distinctObjects"] = summary.distinctObjects;
    report["newObjects"] = summary.newObjects;
    report["newObjectBytes"] = summary.newObjectBytes;
    if (!request.isDryRun) report["packageBytes"] = summary.packageBytes;
    report["replaced"] = {
        {"objects", summary.mendedObjects}, {"package", summary.mendedPackage}, {"inventory", summary.mendedInventory}};
    report["previous"] = previousOf(summary);
}

void addChannel(const ChannelReport& channel, Json& report) {
    report["notes"] = channel.notes;
    report["release"] = channel.release == 0 ? Json(nullptr) : Json(channel.release);
    for (const std::string& fault : channel.faults)
        report["errors"].push_back(fault);
}

void addPlan(const UpdatePlan& plan, Json& report) {
    report["from"] = plan.fromRelease == 0 ? Json(nullptr) : Json(plan.fromRelease);
    report["to"] = plan.target.release;
    report["isUpdate"] = plan.fromRelease < plan.target.release;
    report["incremental"] = plan.incremental;
    report["packageBytes"] = plan.target.size;
    if (!plan.packageReason.empty()) {
        report["packageReason"] = plan.packageReason;
        return;
    }
    report["bytesToFetch"] = plan.difference.bytesToFetch;
    report["bytesReused"] = plan.difference.bytesReused;
    report["fetched"] = filesOf(plan.difference.fetched);
    report["reused"] = filesOf(plan.difference.reused);
    report["removed"] = plan.difference.removed;
}

void addGarbage(const GarbageRequest& request, const GarbageSummary& summary, Json& report) {
    report["dryRun"] = request.isDryRun;
    report["keptReleases"] = summary.keptReleases;
    report["removedReleases"] = summary.removedReleases;
    report["removedFiles"] = summary.removedFiles;
    report["removedBytes"] = summary.removedBytes;
}

}  // namespace

void printJson(const Command& command, const Outcome& outcome, std::ostream& output) {
    constexpr int kIndent = 2;
    Json report = {{"command", nullptr}, {"succeeded", outcome.hasSucceeded}, {"errors", linesOf(outcome.error)}};
    switch (command.action) {
        case Action::build:
            report["command"] = "build";
            addRelease(command.build, outcome, report);
            break;
        case Action::check:
            report["command"] = "check";
            addChannel(outcome.channel, report);
            break;
        case Action::plan:
            report["command"] = "plan";
            if (outcome.hasSucceeded) addPlan(outcome.plan, report);
            break;
        case Action::collectGarbage:
            report["command"] = "gc";
            addGarbage(command.garbage, outcome.garbage, report);
            break;
    }
    // A sentence may hold a name that is not UTF-8.
    output << report.dump(kIndent, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace vorthmere::publish
