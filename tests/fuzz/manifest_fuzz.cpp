#include "update/manifest.h"

#include <algorithm>

#include "fuzz_target.h"
#include "update/release_channel.h"

namespace vorthmere::update::fuzz {
namespace {

// "@BASE@" in an input stands for the release channel's address, which differs from build to build.
std::string withChannelAddress(std::string_view input) {
    constexpr std::string_view placeholder = "@BASE@";
    std::string text(input);
    for (std::size_t at = 0; (at = text.find(placeholder, at)) != std::string::npos; at += kDownloadBaseUrl.size())
        text.replace(at, placeholder.size(), kDownloadBaseUrl);
    return text;
}

std::vector<std::string> fieldLines(const Manifest& manifest) {
    return {"release=" + std::to_string(manifest.release),
            "version=" + manifest.version,
            "protocol=" + std::to_string(manifest.protocol),
            std::string("mandatory=") + (manifest.mandatory ? "1" : "0"),
            "size=" + std::to_string(manifest.size),
            "sha256=" + manifest.sha256,
            "url=" + manifest.url,
            "notes=" + manifest.notes};
}

bool isPrintable(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return c < 0x20 || c > 0x7E; });
}

void requireLimits(const Manifest& manifest, std::string_view text) {
    require(text.size() <= 8192, "an accepted manifest has at most 8192 bytes", text);
    require(manifest.release != 0 && manifest.protocol != 0, "release and protocol count from 1", text);
    require(manifest.size >= 1 && manifest.size <= 512ULL * 1024 * 1024, "a package has 1 byte to 512 MiB", text);
    require(!manifest.version.empty() && manifest.version.size() <= 48 && isPrintable(manifest.version),
            "a version has 1 to 48 printable bytes", text);
    require(manifest.notes.size() <= 240 && isPrintable(manifest.notes), "notes have up to 240 printable bytes", text);
    require(manifest.sha256.size() == 64 && manifest.sha256.find_first_not_of("0123456789abcdef") == std::string::npos,
            "a digest has 64 lower-case hexadecimal digits", text);

    require(manifest.url.starts_with(kDownloadBaseUrl), "a package lies in the channel's folder", text);
    const std::string name = manifest.url.substr(kDownloadBaseUrl.size());
    require(name.starts_with("KVN-") && name.ends_with(".zip") && name.size() > 8, "a package is KVN-...zip", text);
    require(name.find_first_of("/\\?#%@: ") == std::string::npos, "an address ends in a plain file name", text);
    require(manifest.url.size() <= 512, "an address has at most 512 bytes", text);
}

void requireSame(const Manifest& manifest, const std::vector<std::string>& fields, std::string_view lineEnd,
                 std::string_view property) {
    std::vector<std::string> lines = fields;
    lines.insert(lines.begin(), "KVN-UPDATE/1");
    const std::string text = joinLines(lines, lineEnd);
    Manifest again;
    std::string error;
    require(parseManifest(text, again, error) && again == manifest, property, text);
}

void requireRefused(const std::vector<std::string>& fields, std::string_view sentence) {
    std::vector<std::string> lines = fields;
    lines.insert(lines.begin(), "KVN-UPDATE/1");
    const std::string text = joinLines(lines, "\n");
    Manifest ignored;
    std::string error;
    require(!parseManifest(text, ignored, error) && error == sentence, sentence, text);
}

}  // namespace

bool tryInput(std::string_view input) {
    const std::string text = withChannelAddress(input);
    Manifest manifest;
    manifest.notes = "of an earlier use";
    std::string error = "of an earlier use";
    const bool accepted = parseManifest(text, manifest, error);
    requireSentenceOnlyOnFailure(accepted, error, text);
    if (!accepted) return false;

    requireLimits(manifest, text);
    std::vector<std::string> fields = fieldLines(manifest);
    requireSame(manifest, fields, "\n", "an accepted manifest written again reads the same");
    requireSame(manifest, fields, "\r\n", "the kind of line end does not matter");
    std::reverse(fields.begin(), fields.end());
    requireSame(manifest, fields, "\n", "the order of the fields does not matter");

    for (const std::string& field : fieldLines(manifest)) {
        std::vector<std::string> changed = fields;
        changed.push_back(field);
        requireRefused(changed, "Manifest contains a duplicate field.");
        std::erase(changed, field);
        requireRefused(changed, "Manifest is missing a required field.");
    }
    return true;
}

}  // namespace vorthmere::update::fuzz
