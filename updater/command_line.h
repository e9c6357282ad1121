#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "update/arguments.h"

namespace vorthmere::update {

/// Reads the program's command line: "--apply", then flags and options with their values in any order.
///
/// @param argc, argv the words as the platform split them; the first is the program and ignored
/// @param out   receives the options. After a failure only `testNoUi` may be used: it is set when the flag stands
///              before the fault.
/// @param error receives the sentence of the first fault
/// @return true when `out` holds all options. Does not test whether files exist. False with "Usage: KVNUpdater --apply
///         --install <folder> --parent <pid> --current <release>", "The updater command line is invalid.", "The updater
///         command line is missing the installation or release.", "The updater parent process is invalid.", "The
///         updater command line contains an unknown option.", "Local update testing requires both a manifest file and a
///         package file." or "Local incremental testing requires a manifest, package, inventory, and object directory."
[[nodiscard]] bool parseArguments(int argc, const wchar_t* const* argv, Arguments& out, std::wstring& error);

/// Reads a number from 0 to 4294967295 of decimal digits and nothing else. Leading zeros are allowed.
[[nodiscard]] bool parseUnsigned(std::wstring_view text, std::uint32_t& out);

}  // namespace vorthmere::update
