#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "update/arguments.h"

namespace vorthmere::update {

/// Reads the program's command line: "--apply" followed by flags and option/value pairs in any order.
///
/// @param argc, argv as the platform split them; the first is the program and ignored
/// @param out   receives the options. After a failure it is not to be used, but for `testNoUi`, which is set as soon as
///              the flag is met.
/// @param error receives the sentence of the first fault
/// @return true when `out` is complete. Only the shape is checked here; whether files exist is not.
[[nodiscard]] bool parseArguments(int argc, const wchar_t* const* argv, Arguments& out, std::wstring& error);

/// Reads one or more decimal digits, and nothing else, as a number up to 4294967295. Leading zeros are allowed.
[[nodiscard]] bool parseUnsigned(std::wstring_view text, std::uint32_t& out);

}  // namespace vorthmere::update
