#include "tests/simulation/explorer/documented_failures.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace vorthmere::update::simulation {
namespace {

using Sentences = std::set<std::string>;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Each number becomes "N", as the document writes it; "SHA-256" is a word.
std::string withoutNumbers(std::string_view sentence) {
    std::string text;
    while (!sentence.empty()) {
        std::size_t digits = 0;
        while (digits < sentence.size() && isDigit(sentence[digits]))
            ++digits;
        const bool isNumber = digits > 0 && (text.empty() || text.back() == ' ');
        const std::size_t taken = std::max<std::size_t>(digits, 1);
        text += isNumber ? std::string_view("N") : sentence.substr(0, taken);
        sentence.remove_prefix(taken);
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
    std::vector<std::string_view> parts;
    for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
        parts.push_back(trimmed(text.substr(0, end)));
        text.remove_prefix(end + separator.size());
    }
    parts.push_back(trimmed(text));
    return parts;
}

/// The cells of the table that follows a heading, without the table's own heading and line.
std::vector<std::vector<std::string_view>> tableAfter(std::string_view document, std::string_view heading) {
    const std::size_t begin = document.find(heading);
    if (begin == std::string_view::npos) throw std::runtime_error("No heading \"" + std::string(heading) + "\".");
    std::vector<std::vector<std::string_view>> rows;
    bool isInTable = false;
    for (std::string_view line : split(document.substr(begin), "\n")) {
        const bool isRow = line.starts_with('|');
        if (isInTable && !isRow) break;
        isInTable = isRow;
        if (!isRow) continue;
        line.remove_prefix(1);
        if (line.ends_with('|')) line.remove_suffix(1);
        rows.push_back(split(line, "|"));
    }
    if (rows.size() < 3) throw std::runtime_error("No table after \"" + std::string(heading) + "\".");
    rows.erase(rows.begin(), rows.begin() + 2);
    return rows;
}

bool isSentence(std::string_view text) {
    return !text.empty() && std::isupper(static_cast<unsigned char>(text.front())) != 0;
}

/// The sentences of a section's table, in their order.
std::vector<std::string> sentencesOfSection(std::string_view document, std::string_view heading) {
    std::vector<std::string> sentences;
    for (const auto& row : tableAfter(document, heading))
        for (const std::string_view part : split(row.front(), " / "))
            sentences.emplace_back(part == "none" ? "" : std::string(part));
    return sentences;
}

/// Reads the cells of the first table: sentences, or words about where they stand.
class CodeTable {
public:
    explicit CodeTable(std::string_view document) : document_(document) {}

    std::vector<std::string> read(std::string_view cell, int code) {
        constexpr std::string_view followed = "the same, followed by \"";
        std::vector<std::string> sentences;
        if (cell.empty() || cell == "none") {
            sentences.emplace_back();
        } else if (cell.starts_with(followed)) {
            cell.remove_prefix(followed.size());
            for (const std::string& sentence : ofCode_[code])
                sentences.push_back(sentence + std::string(cell.substr(0, cell.find('"'))));
        } else {
            for (const std::string_view part : split(cell, " / "))
                if (isSentence(part)) sentences.emplace_back(part);
            addSection(cell, "(#the-network)", "## The network", sentences);
            addSection(cell, "(#metadata-files)", "## Metadata files", sentences);
        }
        if (sentences.empty()) throw std::runtime_error("Not understood: \"" + std::string(cell) + "\".");
        std::vector<std::string>& known = ofCode_[code];
        known.insert(known.end(), sentences.begin(), sentences.end());
        return sentences;
    }

private:
    void addSection(std::string_view cell, std::string_view link, std::string_view heading,
                    std::vector<std::string>& sentences) const {
        if (cell.find(link) == std::string_view::npos) return;
        const std::vector<std::string> more = sentencesOfSection(document_, heading);
        sentences.insert(sentences.end(), more.begin(), more.end());
    }

    std::string_view document_;
    std::map<int, std::vector<std::string>> ofCode_;
};

}  // namespace

DocumentedFailures DocumentedFailures::read(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    if (!stream) throw std::runtime_error("Cannot read " + file + ".");
    return DocumentedFailures(text.str());
}

DocumentedFailures::DocumentedFailures(std::string_view document) {
    CodeTable table(document);
    for (const auto& row : tableAfter(document, "# When an update fails")) {
        const std::string code(row.front());
        if (code.find_first_not_of("0123456789") != std::string::npos || code.empty() || code == "2") continue;
        for (const std::string& sentence : table.read(row[1], std::stoi(code)))
            sentences_[std::stoi(code)].insert(withoutNumbers(sentence));
    }
}

bool DocumentedFailures::contains(int code, std::string_view sentence) const {
    const auto found = sentences_.find(code);
    return found != sentences_.end() && found->second.contains(withoutNumbers(sentence));
}

}  // namespace vorthmere::update::simulation
