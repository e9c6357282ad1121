#include "publisher/channel.h"

#include <system_error>

#include "publisher/in_quotes.h"
#include "publisher/sha256.h"
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

}  // namespace

FileState stateOfFile(const std::filesystem::path& path, std::uint64_t size, std::string_view sha256,
                      const BytesDone& done) {
    std::error_code failure;
    const std::filesystem::file_status status = std::filesystem::status(path, failure);
    if (status.type() == std::filesystem::file_type::not_found) return FileState::missing;
    if (status.type() != std::filesystem::file_type::regular) return FileState::notAFile;
    if (std::filesystem::file_size(path, failure) != size) return FileState::wrongSize;

    Sha256 digest;
    std::string error;
    const ContentSink hash = [&](std::span<const char> bytes) {
        digest.add(bytes);
        done(bytes.size());
        return true;
    };
    if (!readFile(path, hash, error)) return FileState::unreadable;
    return digest.finish() == sha256 ? FileState::right : FileState::corrupt;
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
    error = sentenceAbout(path, fault);
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
