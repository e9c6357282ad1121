#pragma once

#include <string_view>

#include "update/ascii.h"

namespace vorthmere::update {

/// Judges a path from outside, before it is used below the game folder.
///
/// A safe path has at most kMaxManagedPathBytes. Its components are separated by "/" and consist of ASCII letters,
/// digits, blanks, "-", "." and "_". None is empty, ".", "..", a Windows device (also with an extension) or the
/// work folder, in any letter case. None ends in "." or a blank, which Windows would drop.
///
/// @param path               the path, taken exactly as written
/// @param allowTrailingSlash accept one "/" at the end, which marks folders in an archive's listing
/// @return true when the path is safe; there is no sentence for a failure
[[nodiscard]] bool isSafeRelativePath(std::string_view path, bool allowTrailingSlash);

/// True for a byte that a file or folder of a release may have in its name.
[[nodiscard]] constexpr bool isManagedNameByte(char c) {
    return isAsciiLetter(c) || isAsciiDigit(c) || c == ' ' || c == '-' || c == '.' || c == '_';
}

/// Takes the next line off `remaining`, up to the next line feed or the end.
///
/// @param remaining the text not yet read; afterwards it starts after the line feed, or is empty
/// @return the line without its line feed and without one carriage return before it
std::string_view nextLine(std::string_view& remaining);

}  // namespace vorthmere::update
