#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace vorthmere::update {

/// Reads a whole metadata file as raw bytes, unless its size is zero or above a limit.
///
/// @param path     the file; links are followed
/// @param contents replaced by the file's bytes
/// @param error    receives the sentence of a failure
/// @param maxBytes largest accepted size, in bytes
/// @return true when the file was read whole. False with "An update metadata file has an invalid size." when the size
///         cannot be queried, is zero or above the limit (the file is not opened then), with "Unable to read update
///         metadata." when the file cannot be opened, and with `error` as it was when reading breaks off.
///
/// The file is shared with other readers and writers; one that grows after its size was checked is read to its end.
[[nodiscard]] bool readMetadataFile(const std::filesystem::path& path, std::string& contents, std::wstring& error,
                                    std::uint64_t maxBytes);

/// Parses the text of a metadata file; on failure leaves the sentence in `fault`.
using MetadataParser = std::function<bool(std::string_view text, std::string& fault)>;

/// Reads a metadata file and parses it.
///
/// @param error receives the sentence of a failure: readMetadataFile()'s, or the parser's when it is still empty
[[nodiscard]] bool loadMetadataFile(const std::filesystem::path& path, std::uint64_t maxBytes,
                                    const MetadataParser& parse, std::wstring& error);

}  // namespace vorthmere::update
