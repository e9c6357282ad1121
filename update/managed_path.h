#pragma once

#include <string_view>

#include "update/ascii.h"

namespace vorthmere::update {

/// Judges a path that came from outside, before it is used below the game folder.
///
/// Accepted are short ASCII paths with "/" as the only separator that stay inside the folder, name no Windows device
/// and not the updater's work folder (at any depth, in any letter case), and hold nothing that Windows would silently
/// alter.
///
/// @param path               the path, taken exactly as written
/// @param allowTrailingSlash accept one "/" at the end, as archive listings write folders
/// @return true when the path may be used; there is no message, each caller has its own
[[nodiscard]] bool isSafeRelativePath(std::string_view path, bool allowTrailingSlash);

/// True for a byte that a file or folder of a release may have in its name.
[[nodiscard]] constexpr bool isManagedNameByte(char c) {
    return isAsciiLetter(c) || isAsciiDigit(c) || c == ' ' || c == '-' || c == '.' || c == '_';
}

/// Takes the next line off `remaining`, up to the next line feed or the end.
///
/// @param remaining the text not yet consumed; afterwards it starts after the line feed, or is empty
/// @return the line without its line feed and without one carriage return before it
std::string_view nextLine(std::string_view& remaining);

}  // namespace vorthmere::update
