#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::update::fuzz {

/// Feeds one hostile input to the code under test and checks the answer; each target defines it. A property that does
/// not hold ends the program.
///
/// @return true when the code accepted the input. The replay compares that with the seed's file name.
bool tryInput(std::string_view input);

/// Ends the program when `holds` is false, after printing the property and the input that broke it.
void require(bool holds, std::string_view property, std::string_view input);

/// Requires that a sentence is there exactly when the input was refused, and that it ends as sentences do.
void requireSentenceOnlyOnFailure(bool accepted, std::string_view sentence, std::string_view input);

/// All lines, each without one carriage return at its end. No line follows a final line feed. Does not use the
/// product's own splitter, because it judges that.
std::vector<std::string> splitLines(std::string_view text);

/// Each line followed by `lineEnd`.
std::string joinLines(const std::vector<std::string>& lines, std::string_view lineEnd);

/// Lets a short input stand for a long one, so that limits on the number of lines come within reach: a line "@N text"
/// becomes N lines of text, at most 2100, with every "#" replaced by the number of the line. Other lines stay.
std::string expandRepeatedLines(std::string_view text);

/// Reads valid UTF-8 sequences of two or three bytes, and every other byte as the character of its value. Never yields
/// a surrogate.
std::wstring decodeText(std::string_view bytes);

/// ASCII lower case. Does not use the product's own function.
std::string lowerCase(std::string_view text);

}  // namespace vorthmere::update::fuzz
