#include "install/command_line_quoting.h"

#include <cstddef>

namespace vorthmere::update {

// Backslashes are literal unless a double quote follows them. Then two mean one, and one more escapes the quote.
std::wstring quoteCommandLineArgument(std::wstring_view text) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : text) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        quoted.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
        quoted.push_back(c);
        backslashes = 0;
    }
    quoted.append(2 * backslashes, L'\\');
    quoted.push_back(L'"');
    return quoted;
}

}  // namespace vorthmere::update
