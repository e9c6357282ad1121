#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::update {

/// The first line of a manifest.
inline constexpr std::string_view kManifestHeader = "KVN-UPDATE/1";

/// The one release that the channel offers. Only a record for which parseManifest returned true may be used.
struct Manifest {
    std::uint32_t release = 0;   ///< release number, from 1
    std::uint16_t protocol = 0;  ///< protocol number, from 1
    bool mandatory = false;
    std::uint64_t size = 0;  ///< exact size of the complete package, in bytes
    std::string version;     ///< display text, 1 to 48 printable ASCII bytes
    std::string url;         ///< address of the complete package
    std::string sha256;      ///< digest of the complete package, 64 lower-case hexadecimal digits
    std::string notes;       ///< release notes, at most 240 printable ASCII bytes

    friend bool operator==(const Manifest&, const Manifest&) = default;
};

/// Parses a release manifest, format "KVN-UPDATE/1".
///
/// @param text     the file's bytes
/// @param manifest reset on entry; complete on success, partly filled on failure
/// @param error    cleared on entry; on failure the sentence that names the first fault found
/// @return true when the header, all eight fields and their values are valid and nothing else is in the text
[[nodiscard]] bool parseManifest(std::string_view text, Manifest& manifest, std::string& error);

/// Reads and parses a manifest.
///
/// @param error receives the sentence of a failure: readMetadataFile()'s, or the parser's when it is still empty
[[nodiscard]] bool loadManifest(const std::filesystem::path& path, Manifest& manifest, std::wstring& error);

/// The parser's rules for two of the values.
[[nodiscard]] bool isVersionText(std::string_view text);
[[nodiscard]] bool isNotesText(std::string_view text);

}  // namespace vorthmere::update
