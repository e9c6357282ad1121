#pragma once

#include <filesystem>
#include <string>

#include "update/file_inventory.h"

namespace vorthmere::update {

/// Computes the SHA-256 digest of a file with the platform's cryptography.
///
/// @param path   the file; it is shared with other readers and writers
/// @param digest emptied on entry; on success 64 lower-case hexadecimal digits
/// @param error  receives the sentence of a failure; untouched on success
/// @return false with "Windows could not initialize SHA-256 verification.", "Windows could not create the SHA-256
///         verifier.", "Unable to read the downloaded update archive." (whichever file it is), "Windows could not hash
///         the update archive." or "Windows could not finish SHA-256 verification." (also when reading breaks off)
///
/// The file is read in blocks of 64 KiB, never as a whole.
[[nodiscard]] bool sha256File(const std::filesystem::path& path, std::string& digest, std::wstring& error);

/// True when `path` leads to a regular file with exactly the entry's size and digest, in the installation or elsewhere.
/// False otherwise, and after any failure. A file of another size is not read.
[[nodiscard]] bool installedFileMatches(const std::filesystem::path& path, const InventoryEntry& entry);

}  // namespace vorthmere::update
