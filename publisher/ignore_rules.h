#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::publish {

/// Patterns for paths, with the syntax that people know from git: "*" and "?" stay inside a name, "**" crosses
/// folders, "[a-z]" is one character, a "/" at the end means folders only, one at the beginning or inside ties the
/// pattern to the top, "!" lets in again, "#" begins a comment. The last pattern that fits decides.
class IgnoreRules {
public:
    /// Takes the lines of a file.
    void addLines(std::string_view text);

    /// Takes one pattern.
    void add(std::string_view pattern);

    /// True when the path is left out. Do not ask for paths below a folder that is left out.
    ///
    /// @param path relative, with "/" between components
    [[nodiscard]] bool matches(std::string_view path, bool isFolder) const;

private:
    struct Rule {
        std::string pattern;
        bool isTied = false;
        bool forFolders = false;
        bool letsIn = false;
    };
    std::vector<Rule> rules_;
};

/// True when a whole text fits a pattern.
[[nodiscard]] bool fitsPattern(std::string_view text, std::string_view pattern);

}  // namespace vorthmere::publish
