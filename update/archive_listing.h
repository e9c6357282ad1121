#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// Checks the listing of a package, before anything is unpacked.
///
/// @param listing the archive tool's output: one entry a line, folders with a "/" at the end; blank lines are skipped
/// @param error   receives the sentence of a failure
/// @return true when the listing names at least one entry and every entry is a safe relative path. False with "The
///         update archive is empty.", or with "The update archive contains an unsafe path.", also for more than
///         kMaxArchiveEntries entries.
[[nodiscard]] bool checkArchiveListing(std::string_view listing, std::wstring& error);

}  // namespace vorthmere::update
