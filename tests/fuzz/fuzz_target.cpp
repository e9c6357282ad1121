#include "fuzz_target.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace vorthmere::update::fuzz {
namespace {

std::string escaped(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        if (c >= ' ' && c <= '~' && c != '\\') {
            text.push_back(c);
        } else if (c == '\n') {
            text.append("\\n\n");
        } else {
            char code[5];
            std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
            text.append(code);
        }
    }
    return text;
}

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// The character of a two or three byte sequence at the front, or 0 when there is none.
unsigned leadingSequence(std::string_view bytes, std::size_t& length) {
    const auto bits = [&bytes](std::size_t i, unsigned mask) { return static_cast<unsigned char>(bytes[i]) & mask; };
    unsigned character = 0;
    if (bytes.size() > 1 && bits(0, 0xE0) == 0xC0 && isContinuation(bytes[1])) {
        length = 2;
        character = bits(0, 0x1F) << 6 | bits(1, 0x3F);
        return character < 0x80 ? 0 : character;
    }
    if (bytes.size() > 2 && bits(0, 0xF0) == 0xE0 && isContinuation(bytes[1]) && isContinuation(bytes[2])) {
        length = 3;
        character = bits(0, 0x0F) << 12 | bits(1, 0x3F) << 6 | bits(2, 0x3F);
        const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
        return character < 0x800 || isSurrogate ? 0 : character;
    }
    return 0;
}

}  // namespace

void require(bool holds, std::string_view property, std::string_view input) {
    if (holds) return;
    std::fprintf(stderr, "this does not hold: %s\nfor the input of %zu bytes:\n%s\n", std::string(property).c_str(),
                 input.size(), escaped(input).c_str());
    std::abort();
}

void requireSentenceOnlyOnFailure(bool accepted, std::string_view sentence, std::string_view input) {
    require(accepted == sentence.empty(), "a sentence is there exactly when the input was refused", input);
    require(accepted || sentence.ends_with('.') || sentence.starts_with("Usage: "), "a sentence ends in a full stop",
            input);
}

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    std::string line;
    const auto finishLine = [&lines, &line] {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
        line.clear();
    };
    for (const char c : text) {
        if (c == '\n')
            finishLine();
        else
            line.push_back(c);
    }
    if (!text.empty() && text.back() != '\n') finishLine();
    return lines;
}

std::string joinLines(const std::vector<std::string>& lines, std::string_view lineEnd) {
    std::string text;
    for (const std::string& line : lines)
        text.append(line).append(lineEnd);
    return text;
}

std::string expandRepeatedLines(std::string_view text) {
    constexpr unsigned long mostLines = 2100;
    if (text.find('@') == std::string_view::npos) return std::string(text);
    std::string expanded;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string line(text.substr(start, end - start));
        const std::string lineEnd = end < text.size() ? "\n" : "";
        start = end + 1;
        char* pattern = nullptr;
        const unsigned long count = line.starts_with('@') ? std::strtoul(line.c_str() + 1, &pattern, 10) : 0;
        if (count == 0 || *pattern != ' ' || line.size() > 200) {
            expanded.append(line).append(lineEnd);
            continue;
        }
        for (unsigned long i = 0; i < std::min(count, mostLines); ++i) {
            for (const char* c = pattern + 1; *c != '\0'; ++c)
                *c == '#' ? expanded.append(std::to_string(i)) : expanded.append(1, *c);
            expanded.append(lineEnd);
        }
    }
    return expanded;
}

std::wstring decodeText(std::string_view bytes) {
    std::wstring text;
    while (!bytes.empty()) {
        std::size_t length = 1;
        unsigned character = leadingSequence(bytes, length);
        if (character == 0) {
            length = 1;
            character = static_cast<unsigned char>(bytes.front());
        }
        text.push_back(static_cast<wchar_t>(character));
        bytes.remove_prefix(length);
    }
    return text;
}

std::string lowerCase(std::string_view text) {
    constexpr std::string_view upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr std::string_view lower = "abcdefghijklmnopqrstuvwxyz";
    std::string result(text);
    for (char& c : result)
        if (const std::size_t i = upper.find(c); i != std::string_view::npos) c = lower[i];
    return result;
}

}  // namespace vorthmere::update::fuzz
