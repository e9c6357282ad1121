#include "publisher/channel.h"

#include <system_error>

#include "publisher/in_quotes.h"
#include "update/decimal.h"
#include "update/limits.h"
#include "update/managed_path.h"
#include "update/metadata_file.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

bool readText(const std::filesystem::path& path, std::size_t maxBytes, std::string& text, std::string& error) {
    std::wstring fault;
    if (update::readMetadataFile(path, text, fault, maxBytes)) return true;
    error.assign(fault.begin(), fault.end());
    if (error.empty()) error = "Unable to read update metadata.";
    return false;
}

/// Whether a file is there at all is no matter of the updater's rules.
bool isThere(const std::filesystem::path& path, std::string& error) {
    std::error_code failure;
    switch (std::filesystem::status(path, failure).type()) {
        case std::filesystem::file_type::not_found:
            error = inQuotes(path.filename()) + " is missing.";
            return false;
        case std::filesystem::file_type::none:
            error = inQuotes(path.filename()) + " cannot be read: " + failure.message() + ".";
            return false;
        default:
            return true;
    }
}

std::string sentenceAbout(const std::filesystem::path& path, const std::string& fault) {
    return inQuotes(path.filename()) + " would be refused by the updater: " + fault;
}

bool takeHeaderField(std::string_view& text, std::string_view key, std::string_view& value) {
    const std::string_view line = update::nextLine(text);
    if (!line.starts_with(key)) return false;
    value = line.substr(key.size());
    return true;
}

/// The folder in which a manifest's package lies; empty when there is no such line.
std::string_view addressIn(std::string_view manifest) {
    std::string_view url;
    while (!manifest.empty())
        if (takeHeaderField(manifest, "url=", url)) return url.substr(0, url.rfind('/') + 1);
    return {};
}

}  // namespace

bool hasAddressOfTool(const std::filesystem::path& channel, std::string& error) {
    std::string text;
    std::string unreadable;
    if (!readText(channel / update::kManifestName, update::kMaxManifestBytes, text, unreadable)) return true;
    const std::string_view address = addressIn(text);
    if (address.empty() || address == update::kDownloadBaseUrl) return true;
    error = "The channel is served at " + inQuotes(address) + ", and this kvn-release was built for " +
            inQuotes(update::kDownloadBaseUrl) + ": use the one that was built for the channel's address.";
    return false;
}

bool readPublishedManifest(const std::filesystem::path& channel, std::optional<update::Manifest>& manifest,
                           std::string& error) {
    manifest.reset();
    const std::filesystem::path path = channel / update::kManifestName;
    std::error_code failure;
    if (std::filesystem::symlink_status(path, failure).type() == std::filesystem::file_type::not_found) return true;
    if (!isThere(path, error)) return false;
    std::string text;
    std::string fault;
    update::Manifest parsed;
    if (readText(path, update::kMaxManifestBytes, text, fault) && update::parseManifest(text, parsed, fault)) {
        manifest = parsed;
        return true;
    }
    if (hasAddressOfTool(channel, error)) error = sentenceAbout(path, fault);
    return false;
}

bool readInventory(const std::filesystem::path& path, const update::Manifest& manifest,
                   std::vector<update::InventoryEntry>& entries, std::string& error) {
    std::string text;
    std::string fault;
    entries.clear();
    if (!isThere(path, error)) return false;
    if (readText(path, update::kMaxInventoryBytes, text, fault) &&
        update::parseFileInventory(text, manifest, entries, fault))
        return true;
    entries.clear();
    error = sentenceAbout(path, fault);
    return false;
}

bool readInventoryAlone(const std::filesystem::path& path, update::Manifest& manifest,
                        std::vector<update::InventoryEntry>& entries, std::string& error) {
    std::string text;
    std::string fault;
    if (!isThere(path, error)) return false;
    if (!readText(path, update::kMaxInventoryBytes, text, fault)) {
        error = sentenceAbout(path, fault);
        return false;
    }
    std::string_view rest = text;
    std::string_view magic, archive, release, protocol, version;
    if (!takeHeaderField(rest, "", magic) || !takeHeaderField(rest, "archive=", archive) ||
        !takeHeaderField(rest, "release=", release) || !takeHeaderField(rest, "protocol=", protocol) ||
        !takeHeaderField(rest, "version=", version) || !update::parseDecimal(release, manifest.release) ||
        !update::parseDecimal(protocol, manifest.protocol)) {
        error = inQuotes(path) + " is not a file inventory.";
        return false;
    }
    manifest.sha256 = archive;
    manifest.version = version;
    if (update::parseFileInventory(text, manifest, entries, fault)) return true;
    error = sentenceAbout(path, fault);
    return false;
}

}  // namespace vorthmere::publish
