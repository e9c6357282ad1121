#include "publisher/ignore_rules.h"

#include <algorithm>

namespace vorthmere::publish {
namespace {

std::string_view withoutTrailingSpaces(std::string_view line) {
    while (line.ends_with(' ') && !line.ends_with("\\ "))
        line.remove_suffix(1);
    return line;
}

/// @param pattern begins with "["; on success what follows the class remains
/// @param fits    whether `character` is in the class
/// @return false when the class has no end; then "[" is a character like others
bool takeClass(std::string_view& pattern, char character, bool& fits) {
    std::size_t i = 1;
    const bool isNegated = i < pattern.size() && (pattern[i] == '!' || pattern[i] == '^');
    if (isNegated) ++i;
    bool found = false;
    for (const std::size_t first = i; i < pattern.size() && (pattern[i] != ']' || i == first); ++i) {
        if (pattern[i] == '\\' && i + 1 < pattern.size()) ++i;
        const char low = pattern[i];
        char high = low;
        if (i + 2 < pattern.size() && pattern[i + 1] == '-' && pattern[i + 2] != ']') {
            high = pattern[i + 2];
            i += 2;
        }
        found = found || (low <= character && character <= high);
    }
    if (i >= pattern.size()) return false;
    pattern.remove_prefix(i + 1);
    fits = found != isNegated && character != '/';
    return true;
}

bool fitsAfterStars(std::string_view text, std::string_view pattern) {
    const bool crossesFolders = pattern.starts_with("**");
    while (pattern.starts_with('*'))
        pattern.remove_prefix(1);
    // "**/" also stands for no folder at all.
    if (crossesFolders && pattern.starts_with('/') && fitsPattern(text, pattern.substr(1))) return true;
    for (std::size_t taken = 0;; ++taken) {
        if (fitsPattern(text.substr(taken), pattern)) return true;
        if (taken == text.size() || (!crossesFolders && text[taken] == '/')) return false;
    }
}

}  // namespace

bool fitsPattern(std::string_view text, std::string_view pattern) {
    while (!pattern.empty()) {
        if (pattern.front() == '*') return fitsAfterStars(text, pattern);
        if (text.empty()) return false;
        bool fits = pattern.front() == '?' && text.front() != '/';
        if (pattern.front() != '[' || !takeClass(pattern, text.front(), fits)) {
            if (pattern.front() == '\\' && pattern.size() > 1) pattern.remove_prefix(1);
            fits = fits || pattern.front() == text.front();
            pattern.remove_prefix(1);
        }
        if (!fits) return false;
        text.remove_prefix(1);
    }
    return text.empty();
}

void IgnoreRules::addLines(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (!line.starts_with('#')) add(withoutTrailingSpaces(line));
    }
}

void IgnoreRules::add(std::string_view pattern) {
    Rule rule;
    rule.letsIn = pattern.starts_with('!');
    if (rule.letsIn) pattern.remove_prefix(1);
    rule.forFolders = pattern.ends_with('/');
    if (rule.forFolders) pattern.remove_suffix(1);
    rule.isTied = pattern.find('/') != std::string_view::npos;
    if (pattern.starts_with('/')) pattern.remove_prefix(1);
    if (pattern.empty()) return;
    rule.pattern = pattern;
    rules_.push_back(std::move(rule));
}

bool IgnoreRules::matches(std::string_view path, bool isFolder) const {
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const auto last = std::find_if(rules_.rbegin(), rules_.rend(), [&](const Rule& rule) {
        return (isFolder || !rule.forFolders) && fitsPattern(rule.isTied ? path : name, rule.pattern);
    });
    return last != rules_.rend() && !last->letsIn;
}

}  // namespace vorthmere::publish
