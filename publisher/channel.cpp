#include "publisher/channel.h"

#include <system_error>

#include "publisher/entry_facts.h"
#include "publisher/in_quotes.h"
#include "update/inventory_header.h"
#include "update/limits.h"
#include "update/managed_path.h"
#include "update/metadata_file.h"
#include "update/metadata_keys.h"
#include "update/release_channel.h"
#include "update/text.h"

namespace vorthmere::publish {
namespace {

/// Unlike the updater, tells a missing file from one that it would refuse.
bool isThere(const std::filesystem::path& path, std::string& error) {
    std::error_code failure;
    if (factsOfTarget(path, failure).kind != EntryKind::missing) return true;
    error = inQuotes(path.filename()) + (failure ? " cannot be read: " + failure.message() + "." : " is missing.");
    return false;
}

/// @param fault the updater's sentence; empty when reading broke off
std::string sentenceAbout(const std::filesystem::path& path, const std::wstring& fault) {
    return inQuotes(path.filename()) + " would be refused by the updater: " +
           (fault.empty() ? "Unable to read update metadata." : update::narrow(fault));
}

/// The address of the folder that holds a manifest's package; empty when no line names a package.
std::string_view addressIn(std::string_view manifest) {
    std::string_view url;
    while (!manifest.empty())
        if (update::readFieldLine(update::nextLine(manifest), update::key::url, url))
            return url.substr(0, url.rfind('/') + 1);
    return {};
}

}  // namespace

bool hasAddressOfTool(const std::filesystem::path& channel, std::string& error) {
    std::string address;
    const auto findAddress = [&address](std::string_view text, std::string&) {
        address = addressIn(text);
        return true;
    };
    std::wstring unreadable;
    const bool isReadable =
        update::loadMetadataFile(channel / update::kManifestName, update::kMaxManifestBytes, findAddress, unreadable);
    if (!isReadable || address.empty() || address == update::kDownloadBaseUrl) return true;
    error = "The channel is served at " + inQuotes(address) + ", and this kvn-release was built for " +
            inQuotes(update::kDownloadBaseUrl) + ": use the one that was built for the channel's address.";
    return false;
}

bool readPublishedManifest(const std::filesystem::path& channel, std::optional<update::Manifest>& manifest,
                           std::string& error) {
    manifest.reset();
    const std::filesystem::path path = channel / update::kManifestName;
    std::error_code failure;
    if (factsOf(path, failure).kind == EntryKind::missing && !failure) return true;
    if (!isThere(path, error)) return false;
    std::wstring fault;
    update::Manifest parsed;
    if (update::loadManifest(path, parsed, fault)) {
        manifest = parsed;
        return true;
    }
    if (hasAddressOfTool(channel, error)) error = sentenceAbout(path, fault);
    return false;
}

bool readInventory(const std::filesystem::path& path, const update::Manifest& manifest,
                   std::vector<update::InventoryEntry>& entries, std::string& error) {
    std::wstring fault;
    entries.clear();
    if (!isThere(path, error)) return false;
    if (update::loadFileInventory(path, manifest, entries, fault)) return true;
    entries.clear();
    error = sentenceAbout(path, fault);
    return false;
}

bool readInventoryAlone(const std::filesystem::path& path, update::Manifest& manifest,
                        std::vector<update::InventoryEntry>& entries, std::string& error) {
    entries.clear();
    if (!isThere(path, error)) return false;
    bool hasHeader = true;
    const auto parse = [&](std::string_view text, std::string& fault) {
        hasHeader = update::readInventoryHeader(text, manifest);
        return hasHeader && update::parseFileInventory(text, manifest, entries, fault);
    };
    std::wstring fault;
    if (update::loadMetadataFile(path, update::kMaxInventoryBytes, parse, fault)) return true;
    entries.clear();
    error = hasHeader ? sentenceAbout(path, fault) : inQuotes(path) + " is not a file inventory.";
    return false;
}

}  // namespace vorthmere::publish
