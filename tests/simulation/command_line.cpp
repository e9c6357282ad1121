#include "tests/simulation/command_line.h"

#include <cstddef>

namespace vorthmere::update::simulation {
namespace {

/// Backslashes are literal unless a quote follows: then two are one, and an odd one makes the quote literal.
///
/// @return true when the quote after them is literal
bool takeBackslashes(std::string_view text, std::size_t& at, std::string& argument) {
    std::size_t count = 0;
    while (at < text.size() && text[at] == '\\') {
        ++count;
        ++at;
    }
    const bool isBeforeQuote = at < text.size() && text[at] == '"';
    argument.append(isBeforeQuote ? count / 2 : count, '\\');
    return isBeforeQuote && count % 2 == 1;
}

std::string takeArgument(std::string_view text, std::size_t& at) {
    std::string argument;
    bool isQuoted = false;
    while (at < text.size() && (isQuoted || text[at] != ' ')) {
        if (text[at] == '\\') {
            if (takeBackslashes(text, at, argument)) argument.push_back(text[at++]);
        } else if (text[at] == '"') {
            isQuoted = !isQuoted;
            ++at;
        } else {
            argument.push_back(text[at++]);
        }
    }
    return argument;
}

}  // namespace

std::vector<std::string> splitCommandLine(std::string_view commandLine) {
    std::vector<std::string> arguments;
    std::size_t at = 0;
    while (true) {
        at = commandLine.find_first_not_of(' ', at);
        if (at == std::string_view::npos) return arguments;
        arguments.push_back(takeArgument(commandLine, at));
    }
}

}  // namespace vorthmere::update::simulation
