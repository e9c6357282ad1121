#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vorthmere::update {

/// Runs the system's archive tool without a window and waits for its end, however long it takes.
///
/// @param toolPath      full path of the program
/// @param arguments     its arguments, unquoted
/// @param workingFolder the folder that it runs in, with at most 258 characters
/// @param output        emptied when the tool has started; receives the raw bytes of its standard output and standard
///                      error, in the order of arrival
/// @param error         receives the sentence of a failure
/// @return true when the tool ended with exit code 0 and printed at most kMaxArchiveToolOutputBytes. False with
///         "Unable to capture the archive tool output.", "Unable to start the Windows archive tool (error N).",
///         "The archive tool returned excessive output." (the tool is ended by force then), or
///         "The Windows archive tool rejected the update package." for any other exit code.
[[nodiscard]] bool runArchiveTool(const std::filesystem::path& toolPath, const std::vector<std::wstring>& arguments,
                                  const std::filesystem::path& workingFolder, std::string& output, std::wstring& error);

}  // namespace vorthmere::update
