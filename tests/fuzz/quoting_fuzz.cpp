#include "fuzz_target.h"
#include "install/command_line_quoting.h"

namespace vorthmere::update::fuzz {
namespace {

// Splits the arguments after the program's name as Windows documents it: blanks and tabs separate arguments outside
// quotes; 2n backslashes and a quote are n backslashes and the quote's effect, 2n+1 backslashes and a quote are n
// backslashes and a literal quote; inside quotes, two quotes are one literal quote; all other backslashes are literal.
std::vector<std::wstring> splitCommandLine(const std::wstring& line) {
    std::vector<std::wstring> arguments;
    std::wstring argument;
    bool inArgument = false;
    bool inQuotes = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (!inQuotes && (line[i] == L' ' || line[i] == L'\t')) {
            if (inArgument) arguments.push_back(argument);
            argument.clear();
            inArgument = false;
            continue;
        }
        inArgument = true;
        if (line[i] == L'\\') {
            std::size_t end = line.find_first_not_of(L'\\', i);
            if (end == std::wstring::npos) end = line.size();
            const std::size_t count = end - i;
            const bool quoteFollows = end < line.size() && line[end] == L'"';
            argument.append(quoteFollows ? count / 2 : count, L'\\');
            i = end - 1;
            if (quoteFollows && count % 2 == 1) {
                argument.push_back(L'"');
                i = end;
            }
        } else if (line[i] == L'"') {
            if (inQuotes && i + 1 < line.size() && line[i + 1] == L'"') {
                argument.push_back(L'"');
                ++i;
            } else {
                inQuotes = !inQuotes;
            }
        } else {
            argument.push_back(line[i]);
        }
    }
    if (inArgument) arguments.push_back(argument);
    return arguments;
}

}  // namespace

bool tryInput(std::string_view input) {
    std::vector<std::wstring> arguments;
    std::wstring commandLine;
    for (const std::string& line : splitLines(input)) {
        const std::wstring& argument = arguments.emplace_back(decodeText(line));
        const std::wstring quoted = quoteCommandLineArgument(argument);
        require(quoted.size() >= 2 && quoted.front() == L'"' && quoted.back() == L'"', "every argument gets quotes",
                input);
        require(quoted.size() <= 2 * argument.size() + 2, "quoting at most doubles an argument", input);
        if (!commandLine.empty()) commandLine.push_back(L' ');
        commandLine.append(quoted);
    }
    require(splitCommandLine(commandLine) == arguments, "the quoted arguments are split into the arguments", input);
    return true;
}

}  // namespace vorthmere::update::fuzz
