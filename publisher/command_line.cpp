#include "publisher/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iostream>
#include <limits>

#include "publisher/in_quotes.h"
#include "publisher/release_details.h"
#include "update/decimal.h"
#include "update/limits.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

constexpr std::uint32_t kGreatestProtocol = std::numeric_limits<std::uint16_t>::max();

constexpr std::array kCommands = {"build", "check", "plan", "gc"};

/// Numbers as the user wrote them, so that the sentence about a wrong one is ours, not the library's.
struct WrittenNumbers {
    std::string release;
    std::string protocol;
    std::string keep;
};

/// The arguments are in UTF-8 on every system.
std::filesystem::path pathOf(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

void addPath(CLI::App& command, const std::string& option, std::filesystem::path& path, const std::string& type,
             const std::string& description) {
    command
        .add_option_function<std::string>(
            option, [&path](const std::string& text) { path = pathOf(text); }, description)
        ->required()
        ->type_name(type);
}

void addOutputOptions(CLI::App& command, Command& options) {
    command.add_flag("--quiet", options.isQuiet,
                     "Print no progress and no summary: faults only, and what was asked for");
    command.add_flag("--json", options.asJson, "Print one JSON object instead, described in docs/publishing.md");
}

void addAllowances(CLI::App& build, ReleaseRequest& request) {
    build
        .add_option("--exclude", request.patterns.exclude,
                    "Leave out what fits a pattern, written as in .gitignore; those in .kvnignore at the top of the "
                    "game folder count too")
        ->type_name("PATTERN");
    build
        .add_option("--include", request.patterns.include,
                    "Let in what would be refused by its name: version control, desktop and debugger files, keys")
        ->type_name("PATTERN");
    build.add_flag("--allow-jump", request.allowJump,
                   "Let a release number pass that leaves out more than a million, or leaves few for later");
    build.add_flag("--allow-folder-changes", request.allowFolderChanges,
                   "Publish although a file is a folder in an older release, or the reverse: players who have that "
                   "release may be unable to install this one, or to get theirs back");
    build.add_flag("--allow-any-programs", request.allowAnyPrograms,
                   "Do not look whether the programs are 64-bit Windows programs and the updater asks this channel");
}

void addBuild(CLI::App& build, Command& command, WrittenNumbers& numbers) {
    ReleaseRequest& request = command.build;
    update::Manifest& details = request.details;
    build.add_option("--release", numbers.release, "Release number, greater than every one in the channel")
        ->required()
        ->type_name("NUMBER");
    build
        .add_option(
            "--version", details.version,
            "What players see, 1 to " + std::to_string(update::kMaxVersionBytes) + " printable ASCII characters")
        ->required()
        ->type_name("TEXT");
    build
        .add_option("--protocol", numbers.protocol,
                    "Protocol number of the game, 1 to " + std::to_string(kGreatestProtocol))
        ->required()
        ->type_name("NUMBER");
    build.add_flag("--mandatory", details.mandatory, "Mark the release as one that players have to take");
    build
        .add_option("--notes", details.notes,
                    "Release notes, at most " + std::to_string(update::kMaxNotesBytes) + " printable ASCII characters")
        ->type_name("TEXT");
    addPath(build, "--from", request.gameFolder, "FOLDER", "Folder with the game's files; it is only read");
    addPath(build, "--channel", request.channel, "FOLDER", "Folder that the server serves; created when it is missing");
    addAllowances(build, request);
    build.add_flag("--dry-run", request.isDryRun, "Judge everything that can be judged without writing, write nothing");
    addOutputOptions(build, command);
    build.footer(
        "Example:\n  kvn-release build --release 42 --version \"0.9.3 alpha\" --protocol 1 --from game --channel "
        "/srv/kelvane/downloads\n\n"
        "Run it again with the same options when it was interrupted. Until it has ended, the previous release stays "
        "published.");
}

void takeChannel(const std::string& text, CheckRequest& request) {
    if (!text.starts_with("https://")) {
        request.channel = pathOf(text);
        return;
    }
    request.address = text.ends_with('/') ? text : text + "/";
}

void addCheck(CLI::App& check, Command& command) {
    check
        .add_option_function<std::string>(
            "--channel", [&command](const std::string& text) { takeChannel(text, command.check); },
            "Folder that the server serves, or the https address at which it does, to fetch what players would")
        ->required()
        ->type_name("FOLDER|ADDRESS");
#ifndef _WIN32
    check
        .add_option_function<std::string>(
            "--ca-file", [&command](const std::string& text) { command.check.caFile = pathOf(text); },
            "With an address: trust these certificates instead of the system's")
        ->type_name("FILE");
#endif
    check.add_flag("--allow-folder-changes", command.check.allowFolderChanges,
                   "Report a file that is a folder in an older release, or the reverse, as no fault");
    addOutputOptions(check, command);
}

void addPlan(CLI::App& plan, Command& command) {
    addPath(plan, "--from", command.plan.from, "PATH",
            "The older release: its inventory (KVN-release-N.zip.files), a channel that offers it, an installation, or "
            "its game folder");
    addPath(plan, "--channel", command.plan.channel, "FOLDER", "Folder that the server serves");
    plan.add_flag("--files", command.plan.listFiles, "Also name every file that is fetched or removed");
    addOutputOptions(plan, command);
    plan.footer(
        "A game folder does not tell its release number, so kvn_release.txt counts as fetched unless it is there.\n\n"
        "Example:\n  kvn-release plan --from /srv/kelvane/downloads/KVN-release-41.zip.files --channel "
        "/srv/kelvane/downloads");
}

void addGarbage(CLI::App& garbage, Command& command, WrittenNumbers& numbers) {
    addPath(garbage, "--channel", command.garbage.channel, "FOLDER", "Folder that the server serves");
    garbage
        .add_option("--keep", numbers.keep,
                    "How many releases stay, the published one and the newest before it; all unless it is given")
        ->type_name("NUMBER");
    garbage.add_flag("--dry-run", command.garbage.isDryRun, "Tell what would be removed, and remove nothing");
    addOutputOptions(garbage, command);
}

int refuse(const std::string& sentence) {
    std::cerr << "kvn-release: " << sentence << '\n';
    return kWrongCommandLine;
}

bool readNumber(const std::string& text, const std::string& option, std::uint32_t greatest, std::uint32_t& number,
                std::string& error) {
    if (update::parseDecimal(std::string_view(text), number) && number != 0 && number <= greatest) return true;
    error = numberRule(option, greatest);
    return false;
}

bool readBuild(const WrittenNumbers& numbers, update::Manifest& details, std::string& error) {
    std::uint32_t protocol = 0;
    if (!readNumber(numbers.release, "--release", std::numeric_limits<std::uint32_t>::max(), details.release, error) ||
        !readNumber(numbers.protocol, "--protocol", kGreatestProtocol, protocol, error))
        return false;
    details.protocol = static_cast<std::uint16_t>(protocol);
    return judgeDetails(details, error);
}

bool readGarbage(const WrittenNumbers& numbers, GarbageRequest& request, std::string& error) {
    if (numbers.keep.empty()) return true;
    std::uint32_t keep = 0;
    if (!readNumber(numbers.keep, "--keep", std::numeric_limits<std::uint32_t>::max(), keep, error)) return false;
    request.keep = keep;
    return true;
}

bool namesUnknownCommand(const std::vector<std::string>& arguments) {
    return !arguments.empty() && !arguments.front().starts_with('-') &&
           std::find(kCommands.begin(), kCommands.end(), arguments.front()) == kCommands.end();
}

std::string description() {
    return "Makes releases of Kelvane that KVNUpdater.exe can install, in a folder that any HTTPS server can serve "
           "as\n" +
           std::string(update::kDownloadBaseUrl);
}

}  // namespace

std::optional<int> parseCommandLine(std::vector<std::string> arguments, Command& command) {
    CLI::App app(description(), "kvn-release");
    app.set_version_flag("--version", "kvn-release " KVN_VERSION " for " + std::string(update::kDownloadBaseUrl));
    app.require_subcommand(1);
    WrittenNumbers numbers;
    CLI::App* const build = app.add_subcommand("build", "Publish a folder with the game's files as a release");
    addBuild(*build, command, numbers);
    CLI::App* const check =
        app.add_subcommand("check", "Read a channel as an updater would and report every fault; exit code 1 if any");
    addCheck(*check, command);
    CLI::App* const plan =
        app.add_subcommand("plan", "Tell what an updater would fetch that comes from an older release");
    addPlan(*plan, command);
    CLI::App* const garbage = app.add_subcommand("gc", "Remove from a channel what no release needs any more");
    addGarbage(*garbage, command, numbers);
    app.footer(
        "\"kvn-release build --help\" and so on tell more. Exit codes: 0 done, 1 refused or faulty, 2 wrong command "
        "line.");

    if (namesUnknownCommand(arguments))
        return refuse(inQuotes(arguments.front()) + " is no command; there are build, check, plan and gc.");
    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& wrong) {
        return app.exit(wrong) == kDone ? kDone : kWrongCommandLine;
    }

    std::string error;
    if (*build) {
        command.action = Action::build;
        if (!readBuild(numbers, command.build.details, error)) return refuse(error);
    } else if (*garbage) {
        command.action = Action::collectGarbage;
        if (!readGarbage(numbers, command.garbage, error)) return refuse(error);
    } else {
        command.action = *plan ? Action::plan : Action::check;
    }
    return {};
}

}  // namespace vorthmere::publish
