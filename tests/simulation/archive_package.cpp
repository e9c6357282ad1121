#include <charconv>

#include "tests/simulation/archive_tool.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::string_view kMark = "PK simulated\n";
constexpr std::string_view kKinds = "fdlj";

/// Takes the text up to a line's end; nothing when the line was cut.
std::optional<std::string_view> takeLine(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return line;
}

/// "f-- 12 data/a.pak": kind, read-only, damaged, size, name. The bytes follow.
bool takeEntry(std::string_view& rest, PackagedEntry& entry) {
    const std::optional<std::string_view> line = takeLine(rest);
    if (!line || line->size() < 6) return false;
    const std::size_t kind = kKinds.find((*line)[0]);
    std::size_t size = 0;
    const auto [end, failure] = std::from_chars(line->data() + 4, line->data() + line->size(), size);
    if (kind == std::string_view::npos || failure != std::errc{} || rest.size() < size) return false;
    entry.kind = static_cast<PackagedEntry::Kind>(kind);
    entry.isReadOnly = (*line)[1] == 'r';
    entry.isDamaged = (*line)[2] == 'x';
    entry.name = line->substr(static_cast<std::size_t>(end - line->data()) + 1);
    entry.content = rest.substr(0, size);
    rest.remove_prefix(size);
    return true;
}

}  // namespace

std::string packageOf(const std::vector<PackagedEntry>& entries) {
    std::string package(kMark);
    for (const PackagedEntry& entry : entries) {
        package.push_back(kKinds[static_cast<std::size_t>(entry.kind)]);
        package.push_back(entry.isReadOnly ? 'r' : '-');
        package.push_back(entry.isDamaged ? 'x' : '-');
        package.append(" ").append(std::to_string(entry.content.size())).append(" ").append(entry.name).append("\n");
        package.append(entry.content);
    }
    return package.append("end\n");
}

std::optional<std::vector<PackagedEntry>> entriesOf(std::string_view package, bool& isWhole) {
    isWhole = false;
    if (!package.starts_with(kMark)) return std::nullopt;
    package.remove_prefix(kMark.size());
    std::vector<PackagedEntry> entries;
    PackagedEntry entry;
    while (package != "end\n" && takeEntry(package, entry))
        entries.push_back(entry);
    isWhole = package == "end\n";
    return entries;
}

}  // namespace vorthmere::update::simulation
