#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "update/file_inventory.h"
#include "update/manifest.h"

namespace vorthmere::update::testing {

/// The lines of a text file. A test takes a valid file and changes one line.
using Lines = std::vector<std::string>;

/// Joins lines with a line end between them and, by default, after the last.
[[nodiscard]] std::string joinLines(const Lines& lines, std::string_view lineEnd = "\n", bool endLastLine = true);

/// Returns `lines` with the one line that begins with `prefix` replaced.
///
/// @throws std::invalid_argument unless exactly one line begins so: the test would change nothing, or the wrong thing
[[nodiscard]] Lines withLine(Lines lines, std::string_view prefix, std::string replacement);

/// Returns `lines` without the one line that begins with `prefix`.
///
/// @throws std::invalid_argument unless exactly one line begins so
[[nodiscard]] Lines withoutLine(Lines lines, std::string_view prefix);

/// A digest in valid form: the same lower-case hexadecimal digit 64 times.
[[nodiscard]] std::string sampleDigest(char digit);

/// A record as the manifest reader returns it, with its package on this build's release channel.
[[nodiscard]] Manifest sampleManifest();

/// The manifest file of a record, valid when the record is: the header and the eight fields.
[[nodiscard]] Lines manifestLines(const Manifest& manifest);

/// The smallest list that names everything that a release must hold, and one file in a folder.
[[nodiscard]] Lines samplePaths();

/// One record for each of samplePaths(), with sizes and digests that differ.
[[nodiscard]] std::vector<InventoryEntry> sampleEntries();

/// The five header lines of a release's file inventory.
[[nodiscard]] Lines inventoryHeaderLines(const Manifest& manifest);

/// One record line of a file inventory.
[[nodiscard]] std::string inventoryLine(const InventoryEntry& entry);

/// The file inventory of a release, valid when the manifest and the entries are.
[[nodiscard]] Lines inventoryLines(const Manifest& manifest, const std::vector<InventoryEntry>& entries);

}  // namespace vorthmere::update::testing
