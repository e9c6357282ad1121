#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::update {

/// The first line of a manifest.
inline constexpr std::string_view kManifestHeader = "KVN-UPDATE/1";

/// The release that the channel offers. Valid only when parseManifest() returned true for it.
struct Manifest {
    std::uint32_t release = 0;   ///< release number, from 1
    std::uint16_t protocol = 0;  ///< protocol number, from 1
    bool mandatory = false;
    std::uint64_t size = 0;  ///< exact size of the package, in bytes
    std::string version;     ///< display text, 1 to 48 printable ASCII bytes
    std::string url;         ///< address of the package
    std::string sha256;      ///< digest of the package, 64 lower-case hexadecimal digits
    std::string notes;       ///< release notes, at most 240 printable ASCII bytes

    friend bool operator==(const Manifest&, const Manifest&) = default;
};

/// Parses a manifest, format "KVN-UPDATE/1".
///
/// @param text     the file's bytes
/// @param manifest reset on entry; filled on success, partly filled on failure
/// @param error    cleared on entry; on failure the sentence of the first fault found
/// @return true when the header is right, all eight fields are there once with valid values, and nothing else is in the
///         text. False with "Manifest size is invalid.", "Manifest header is invalid.", "Manifest field is malformed.",
///         "Manifest contains an unknown field.", "Manifest contains a duplicate field.", "Manifest is missing a
///         required field.", or for a bad value "Manifest release is invalid.", "Manifest version is invalid.",
///         "Manifest protocol is invalid.", "Manifest mandatory flag is invalid.", "Manifest archive size is invalid.",
///         "Manifest SHA-256 is invalid.", "Manifest archive URL is invalid." or "Manifest notes are invalid."
[[nodiscard]] bool parseManifest(std::string_view text, Manifest& manifest, std::string& error);

/// Reads and parses a manifest.
///
/// @param error receives the sentence of a failure: readMetadataFile()'s, or the parser's when it is still empty
[[nodiscard]] bool loadManifest(const std::filesystem::path& path, Manifest& manifest, std::wstring& error);

/// The parser's rules for two of the values.
[[nodiscard]] bool isVersionText(std::string_view text);
[[nodiscard]] bool isNotesText(std::string_view text);

}  // namespace vorthmere::update
