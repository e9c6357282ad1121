#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>
#include <string>

#include "publisher/build_release.h"
#include "publisher/check_channel.h"
#include "publisher/console.h"
#include "publisher/durable_files.h"
#include "publisher/update_plan.h"
#include "update/decimal.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

constexpr int kUsageError = 2;

struct BuildOptions {
    ReleaseRequest request;
    std::string release;
    std::string protocol;
};

void addBuildOptions(CLI::App& build, BuildOptions& options) {
    update::Manifest& details = options.request.details;
    build.add_option("--release", options.release, "Release number, greater than that of the release published so far")
        ->required()
        ->type_name("NUMBER");
    build.add_option("--version", details.version, "What players see, 1 to 48 printable ASCII characters")
        ->required()
        ->type_name("TEXT");
    build.add_option("--protocol", options.protocol, "Protocol number of the game, 1 to 65535")
        ->required()
        ->type_name("NUMBER");
    build.add_flag("--mandatory", details.mandatory, "Mark the release as one that players have to take");
    build.add_option("--notes", details.notes, "Release notes, at most 240 printable ASCII characters")
        ->type_name("TEXT");
    build.add_option("--from", options.request.gameFolder, "Folder with the game's files; it is only read")
        ->required()
        ->type_name("FOLDER");
    build.add_option("--channel", options.request.channel, "Folder that the server serves; created when it is missing")
        ->required()
        ->type_name("FOLDER");
    build.footer(
        "Example:\n  kvn-release build --release 42 --version \"0.9.3 alpha\" --protocol 1 --from game --channel "
        "/srv/kelvane/downloads\n\n"
        "Run it again with the same options when it was interrupted. Until it has ended, the previous release stays "
        "published.");
}

bool readNumbers(BuildOptions& options, std::string& error) {
    update::Manifest& details = options.request.details;
    if (!update::parseDecimal(std::string_view(options.release), details.release) || details.release == 0)
        error = "--release must be a number from 1 to 4294967295.";
    else if (!update::parseDecimal(std::string_view(options.protocol), details.protocol) || details.protocol == 0)
        error = "--protocol must be a number from 1 to 65535.";
    return error.empty();
}

void printSummary(const update::Manifest& details, const ReleaseSummary& summary, Console& console) {
    console.line("Release " + std::to_string(details.release) + " (" + details.version + ") is published.");
    console.line("  files:            " + countOf(summary.files, "file") + ", " + sizeOf(summary.bytes));
    console.line("  distinct objects: " + std::to_string(summary.distinctObjects));
    console.line("  new objects:      " + std::to_string(summary.newObjects) + ", " + sizeOf(summary.newObjectBytes));
    if (summary.mendedObjects != 0)
        console.line("  replaced:         " + countOf(summary.mendedObjects, "damaged object"));
    console.line("  complete package: " + sizeOf(summary.packageBytes));
    const std::string previous =
        summary.previousRelease ? "release " + std::to_string(*summary.previousRelease) : "an earlier release";
    if (!summary.previousFault.empty())
        console.line("  from " + previous + ": what an updater fetches is not known. " + summary.previousFault);
    else if (summary.previousRelease)
        console.line("  from " + previous + ": an updater fetches " + sizeOf(summary.bytesFromPrevious) +
                     (summary.incrementalFromPrevious ? " as changed files" : " as the complete package"));
    else
        console.line("  the channel holds no earlier release to update from");
}

bool build(BuildOptions& options, Console& console, std::string& error) {
    ReleaseSummary summary;
    if (!readNumbers(options, error) || !buildRelease(options.request, console, summary, error)) return false;
    printSummary(options.request.details, summary, console);
    return true;
}

bool check(const std::filesystem::path& channel, Console& console) {
    const std::vector<std::string> faults = checkChannel(channel, console);
    for (const std::string& fault : faults)
        console.line(fault);
    console.line(faults.empty() ? "The channel is sound: every updater can install its release."
                                : "The channel has " + countOf(faults.size(), "fault") + ".");
    return faults.empty();
}

struct PlanOptions {
    std::filesystem::path from;
    std::filesystem::path channel;
    bool listFiles = false;
};

void addPlanOptions(CLI::App& plan, PlanOptions& options) {
    plan.add_option("--from", options.from,
                    "The older release: its inventory (KVN-release-N.zip.files), an installation, or its game folder")
        ->required()
        ->type_name("PATH");
    plan.add_option("--channel", options.channel, "Folder that the server serves")->required()->type_name("FOLDER");
    plan.add_flag("--files", options.listFiles, "Also name every file that is fetched or removed");
    plan.footer(
        "A game folder does not tell its release number, so kvn_release.txt counts as fetched unless it is there.\n\n"
        "Example:\n  kvn-release plan --from /srv/kelvane/downloads/KVN-release-41.zip.files --channel "
        "/srv/kelvane/downloads");
}

void printPlan(const UpdatePlan& plan, bool listFiles, Console& console) {
    const ReleaseDifference& difference = plan.difference;
    if (plan.fromRelease >= plan.target.release) {
        console.line("Release " + std::to_string(plan.fromRelease) + " is not older than release " +
                     std::to_string(plan.target.release) + " of the channel: an updater does nothing.");
        return;
    }
    console.line((plan.fromRelease != 0 ? "From release " + std::to_string(plan.fromRelease) : "From this folder") +
                 " to release " + std::to_string(plan.target.release) + " (" + plan.target.version + "):");
    if (!plan.packageReason.empty()) {
        console.line("  complete package: " + sizeOf(plan.target.size));
        console.line("The update takes the complete package: " + plan.packageReason);
        return;
    }
    if (listFiles) {
        for (const update::InventoryEntry& entry : difference.fetched)
            console.line("  fetch " + entry.path + ", " + sizeOf(entry.size));
        for (const std::string& path : difference.removed)
            console.line("  remove " + path);
    }
    console.line("  reused:           " + countOf(difference.reused.size(), "file") + ", " +
                 sizeOf(difference.bytesReused));
    console.line("  fetched:          " + countOf(difference.fetched.size(), "file") + ", " +
                 sizeOf(difference.bytesToFetch));
    console.line("  removed:          " + countOf(difference.removed.size(), "file"));
    console.line("  complete package: " + sizeOf(plan.target.size));
    console.line(plan.incremental
                     ? "The update is incremental: the changed files are smaller than the complete package."
                     : "The update takes the complete package: the changed files are not smaller.");
}

bool plan(const PlanOptions& options, Console& console, std::string& error) {
    UpdatePlan found;
    if (!planUpdate(options.from, options.channel, console, found, error)) return false;
    printPlan(found, options.listFiles, console);
    return true;
}

int run(int argc, char** argv) {
    CLI::App app(
        "Makes releases of Kelvane that KVNUpdater.exe can install, in a folder that any HTTPS server can serve as\n" +
            std::string(update::kDownloadBaseUrl),
        "kvn-release");
    app.require_subcommand(1);
    BuildOptions buildOptions;
    CLI::App* const buildCommand = app.add_subcommand("build", "Publish a folder with the game's files as a release");
    addBuildOptions(*buildCommand, buildOptions);

    std::filesystem::path checkedChannel;
    CLI::App* const checkCommand =
        app.add_subcommand("check", "Read a channel as an updater would and report every fault; exit code 1 if any");
    checkCommand->add_option("--channel", checkedChannel, "Folder that the server serves")
        ->required()
        ->type_name("FOLDER");

    PlanOptions planOptions;
    CLI::App* const planCommand =
        app.add_subcommand("plan", "Tell what an updater would fetch that comes from an older release");
    addPlanOptions(*planCommand, planOptions);
    app.footer(
        "\"kvn-release build --help\" and so on tell more. Exit codes: 0 done, 1 refused or faulty, 2 wrong command "
        "line.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& wrong) {
        return app.exit(wrong) == EXIT_SUCCESS ? EXIT_SUCCESS : kUsageError;
    }

    Console console(std::cout, outputIsTerminal());
    std::string error;
    bool succeeded = false;
    if (*buildCommand)
        succeeded = build(buildOptions, console, error);
    else if (*planCommand)
        succeeded = plan(planOptions, console, error);
    else if (*checkCommand)
        succeeded = check(checkedChannel, console);
    if (!error.empty()) std::cerr << "kvn-release: " << error << '\n';
    return succeeded ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace vorthmere::publish

int main(int argc, char** argv) {
    try {
        return vorthmere::publish::run(argc, argv);
    } catch (const std::exception& fault) {
        std::cerr << "kvn-release: " << fault.what() << '\n';
        return EXIT_FAILURE;
    }
}
