#include "update/manifest.h"

#include <algorithm>
#include <array>
#include <vector>

#include "update/ascii.h"
#include "update/decimal.h"
#include "update/failing.h"
#include "update/limits.h"
#include "update/managed_path.h"
#include "update/metadata_file.h"
#include "update/metadata_keys.h"
#include "update/release_channel.h"
#include "update/sha256_text.h"

namespace vorthmere::update {
namespace {

bool allPrintable(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isPrintableAscii);
}

bool isPackageNameByte(char c) {
    return isAsciiLetter(c) || isAsciiDigit(c) || c == '-' || c == '.' || c == '_';
}

bool readRelease(std::string_view value, Manifest& manifest) {
    return parseDecimal(value, manifest.release) && manifest.release != 0;
}

bool readVersion(std::string_view value, Manifest& manifest) {
    if (!isVersionText(value)) return false;
    manifest.version = value;
    return true;
}

bool readProtocol(std::string_view value, Manifest& manifest) {
    return parseDecimal(value, manifest.protocol) && manifest.protocol != 0;
}

bool readMandatory(std::string_view value, Manifest& manifest) {
    if (value != "0" && value != "1") return false;
    manifest.mandatory = value == "1";
    return true;
}

bool readSize(std::string_view value, Manifest& manifest) {
    std::uint64_t size = 0;
    if (!parseDecimal(value, size) || size == 0 || size > kMaxPackageBytes) return false;
    manifest.size = size;
    return true;
}

bool readSha256(std::string_view value, Manifest& manifest) {
    if (!isSha256Text(value)) return false;
    manifest.sha256 = toAsciiLower(value);
    return true;
}

// Only the bytes of a name may follow the prefix, so that every package lies directly in the channel's folder.
bool readUrl(std::string_view value, Manifest& manifest) {
    const std::size_t prefixLength = kDownloadBaseUrl.size() + kPackageNamePrefix.size();
    constexpr std::size_t shortestTail = kPackageNameSuffix.size() + 1;
    if (value.size() > kMaxUrlBytes || value.size() < prefixLength + shortestTail) return false;
    if (!value.starts_with(kDownloadBaseUrl)) return false;
    if (!value.substr(kDownloadBaseUrl.size()).starts_with(kPackageNamePrefix)) return false;
    if (!value.ends_with(kPackageNameSuffix)) return false;
    const std::string_view tail = value.substr(prefixLength);
    if (!std::all_of(tail.begin(), tail.end(), isPackageNameByte)) return false;
    manifest.url = value;
    return true;
}

bool readNotes(std::string_view value, Manifest& manifest) {
    if (!isNotesText(value)) return false;
    manifest.notes = value;
    return true;
}

struct Field {
    std::string_view key;
    bool (*read)(std::string_view value, Manifest& manifest);
    std::string_view fault;
};

constexpr std::array<Field, 8> kFields = {{
    {key::release, readRelease, "Manifest release is invalid."},
    {key::version, readVersion, "Manifest version is invalid."},
    {key::protocol, readProtocol, "Manifest protocol is invalid."},
    {key::mandatory, readMandatory, "Manifest mandatory flag is invalid."},
    {key::size, readSize, "Manifest archive size is invalid."},
    {key::sha256, readSha256, "Manifest SHA-256 is invalid."},
    {key::url, readUrl, "Manifest archive URL is invalid."},
    {key::notes, readNotes, "Manifest notes are invalid."},
}};

/// The text after the last line feed is a line too, often an empty one.
std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    bool feedFollows = true;
    while (feedFollows) {
        feedFollows = text.find('\n') != std::string_view::npos;
        lines.push_back(nextLine(text));
    }
    return lines;
}

}  // namespace

bool isVersionText(std::string_view text) {
    return !text.empty() && text.size() <= kMaxVersionBytes && allPrintable(text);
}

bool isNotesText(std::string_view text) {
    return text.size() <= kMaxNotesBytes && allPrintable(text);
}

bool parseManifest(std::string_view text, Manifest& manifest, std::string& error) {
    manifest = {};
    error.clear();
    if (text.empty() || text.size() > kMaxManifestBytes || text.find('\0') != std::string_view::npos)
        return fail(error, "Manifest size is invalid.");
    const std::vector<std::string_view> lines = splitLines(text);
    if (lines.front() != kManifestHeader) return fail(error, "Manifest header is invalid.");

    std::array<bool, kFields.size()> present{};
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::string_view line = lines[i];
        if (line.empty() && i + 1 == lines.size()) break;
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || equals == 0) return fail(error, "Manifest field is malformed.");

        const std::string_view name = line.substr(0, equals);
        const auto field =
            std::find_if(kFields.begin(), kFields.end(), [name](const Field& f) { return f.key == name; });
        if (field == kFields.end()) return fail(error, "Manifest contains an unknown field.");
        bool& seen = present[static_cast<std::size_t>(field - kFields.begin())];
        if (seen) return fail(error, "Manifest contains a duplicate field.");
        seen = true;
        if (!field->read(line.substr(equals + 1), manifest)) return fail(error, field->fault);
    }
    if (!std::all_of(present.begin(), present.end(), [](bool seen) { return seen; }))
        return fail(error, "Manifest is missing a required field.");
    return true;
}

bool loadManifest(const std::filesystem::path& path, Manifest& manifest, std::wstring& error) {
    const auto parse = [&manifest](std::string_view text, std::string& fault) {
        return parseManifest(text, manifest, fault);
    };
    return loadMetadataFile(path, kMaxManifestBytes, parse, error);
}

}  // namespace vorthmere::update
