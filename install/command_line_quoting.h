#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// Quotes one argument for a Windows command line, so that CommandLineToArgvW reads it back as exactly `text`. Every
/// argument gets quotes, even without blanks; an empty one becomes two quotes.
[[nodiscard]] std::wstring quoteCommandLineArgument(std::wstring_view text);

}  // namespace vorthmere::update
