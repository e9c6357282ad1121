#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace vorthmere::update {

/// Reads a whole metadata file as raw bytes, unless it is empty or larger than a limit.
///
/// @param path     the file; links are followed
/// @param contents replaced by the file's bytes
/// @param error    receives the sentence of a failure
/// @param maxBytes largest accepted size, in bytes
/// @return true when the whole file was read. False with "An update metadata file has an invalid size." when the size
///         cannot be read, is zero or above the limit (the file is not opened then), and with "Unable to read update
///         metadata." when the file cannot be opened. False with `error` unchanged when reading breaks off.
///
/// The file is shared with other readers and writers. A file that grows after its size was checked is read to its end.
[[nodiscard]] bool readMetadataFile(const std::filesystem::path& path, std::string& contents, std::wstring& error,
                                    std::uint64_t maxBytes);

/// Parses the text of a metadata file; stores the sentence of a failure in `fault`.
using MetadataParser = std::function<bool(std::string_view text, std::string& fault)>;

/// Reads a metadata file and parses it.
///
/// @param error empty on entry; receives the sentence of a failure, readMetadataFile()'s or the parser's, and stays
///              empty when reading breaks off
[[nodiscard]] bool loadMetadataFile(const std::filesystem::path& path, std::uint64_t maxBytes,
                                    const MetadataParser& parse, std::wstring& error);

}  // namespace vorthmere::update
