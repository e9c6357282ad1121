#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>
#include <string>

#include "publisher/build_release.h"
#include "publisher/console.h"
#include "publisher/durable_files.h"
#include "publisher/release_texts.h"
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
    if (summary.previousRelease)
        console.line("  from release " + std::to_string(*summary.previousRelease) + ": an updater fetches " +
                     sizeOf(summary.bytesFromPrevious) +
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

int run(int argc, char** argv) {
    CLI::App app(
        "Makes releases of Kelvane that KVNUpdater.exe can install, in a folder that any HTTPS server can serve as\n" +
            std::string(update::kDownloadBaseUrl),
        "kvn-release");
    app.require_subcommand(1);
    BuildOptions buildOptions;
    CLI::App* const buildCommand = app.add_subcommand("build", "Publish a folder with the game's files as a release");
    addBuildOptions(*buildCommand, buildOptions);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& wrong) {
        return app.exit(wrong) == EXIT_SUCCESS ? EXIT_SUCCESS : kUsageError;
    }

    Console console(std::cout, outputIsTerminal());
    std::string error;
    const bool succeeded = build(buildOptions, console, error);
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
