#include <cerrno>
#include <iostream>
#include <system_error>

#include "publisher/check_served_channel.h"
#include "publisher/command_line.h"
#include "publisher/console.h"
#include "publisher/interruption.h"
#include "publisher/process_arguments.h"
#include "publisher/report.h"
#include "publisher/terminal.h"

namespace vorthmere::publish {
namespace {

ChannelReport checkAsAsked(const CheckRequest& request, Console& console) {
    return request.address.empty()
               ? checkChannel(request.channel, request.allowFolderChanges, console)
               : checkServedChannel(request.address, request.caFile, request.allowFolderChanges, console);
}

void run(const Command& command, Console& console, Outcome& outcome) {
    switch (command.action) {
        case Action::build:
            outcome.hasSucceeded = buildRelease(command.build, console, outcome.release, outcome.error);
            break;
        case Action::check:
            outcome.channel = checkAsAsked(command.check, console);
            outcome.hasSucceeded = outcome.channel.faults.empty();
            break;
        case Action::plan:
            outcome.hasSucceeded =
                planUpdate(command.plan.from, command.plan.channel, console, outcome.plan, outcome.error);
            break;
        case Action::collectGarbage:
            outcome.hasSucceeded = collectGarbage(command.garbage, console, outcome.garbage, outcome.error);
            break;
    }
}

void printErrors(const std::string& sentences) {
    std::string_view rest = sentences;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::cerr << "kvn-release: " << rest.substr(0, end) << '\n';
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

/// @return false with a sentence when not everything could be printed
bool flushOutput() {
    errno = 0;
    if (std::cout.flush()) return true;
    std::cerr << "kvn-release: What was to be printed could not be written"
              << (errno != 0 ? ": " + std::generic_category().message(errno) : std::string()) << ".\n";
    return false;
}

int runCommandLine(int argc, char** argv) {
    Command command;
    if (const std::optional<int> exitCode = parseCommandLine(processArguments(argc, argv), command))
        return flushOutput() ? *exitCode : kRefused;

    watchForInterruptions();
    Console console(std::cout, outputIsTerminal(), outputWidth());
    if (command.isQuiet || command.asJson) console.silence();
    Outcome outcome;
    run(command, console, outcome);
    // An interrupted check has no result. A build or gc that was complete before has one.
    const bool changesFiles = command.action == Action::build || command.action == Action::collectGarbage;
    const bool wasCutOff = isInterrupted() && !(outcome.hasSucceeded && changesFiles);
    if (wasCutOff) {
        outcome.hasSucceeded = false;
        if (outcome.error.empty()) outcome.error = interruptionSentence();
    }
    if (command.asJson)
        printJson(command, outcome, std::cout);
    else if (!wasCutOff)
        printReport(command, outcome, std::cout);
    printErrors(outcome.error);
    if (wasCutOff) endAsInterrupted();
    return flushOutput() && outcome.hasSucceeded ? kDone : kRefused;
}

}  // namespace
}  // namespace vorthmere::publish

int main(int argc, char** argv) {
    try {
        return vorthmere::publish::runCommandLine(argc, argv);
    } catch (const std::exception& fault) {
        std::cerr << "kvn-release: " << fault.what() << '\n';
        return vorthmere::publish::kRefused;
    }
}
