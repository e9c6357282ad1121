#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// Checks a package before anything of it is unpacked.
///
/// @param listing what the archive tool printed: one entry a line, folders with a trailing "/"
/// @param error   receives "The update archive is empty." or "The update archive contains an unsafe path."; more than
///                kMaxArchiveEntries entries count as unsafe
/// @return true when the listing names at least one entry and every entry is a safe relative path
[[nodiscard]] bool checkArchiveListing(std::string_view listing, std::wstring& error);

}  // namespace vorthmere::update
