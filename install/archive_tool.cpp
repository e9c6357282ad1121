#include "install/archive_tool.h"

#include <array>

#include "install/command_line_quoting.h"
#include "platform/failure.h"
#include "platform/programs.h"
#include "update/failing.h"
#include "update/limits.h"

namespace vorthmere::update {
namespace {

constexpr std::size_t kReadChunkBytes = 8192;
constexpr std::uint32_t kExcessiveOutputExitCode = 9;
constexpr std::uint32_t kUnknownExitCode = 1;

std::wstring buildCommandLine(const std::filesystem::path& toolPath, const std::vector<std::wstring>& arguments) {
    std::wstring commandLine = quoteCommandLineArgument(toolPath.wstring());
    for (const std::wstring& argument : arguments)
        commandLine += L" " + quoteCommandLineArgument(argument);
    return commandLine;
}

/// Reads until the pipe breaks, which it does when the tool ends. False when the output is larger than its limit.
bool drain(const FileHandle& readEnd, std::string& output) {
    std::array<char, kReadChunkBytes> chunk{};
    std::error_code broken;
    while (const std::size_t count = readBytes(readEnd, chunk.data(), chunk.size(), broken)) {
        if (output.size() + count > kMaxArchiveToolOutputBytes) return false;
        output.append(chunk.data(), count);
    }
    return true;
}

}  // namespace

bool runArchiveTool(const std::filesystem::path& toolPath, const std::vector<std::wstring>& arguments,
                    const std::filesystem::path& workingFolder, std::string& output, std::wstring& error) {
    Pipe pipe;
    if (openPipe(pipe)) return fail(error, L"Unable to capture the archive tool output.");

    std::error_code failure;
    const ProcessHandle process =
        startCaptured(toolPath, buildCommandLine(toolPath, arguments), workingFolder, pipe.writeEnd, failure);
    pipe.writeEnd.reset();
    if (failure) {
        pipe.readEnd.reset();
        return fail(error,
                    L"Unable to start the Windows archive tool (error " + std::to_wstring(lastErrorNumber()) + L").");
    }

    output.clear();
    if (!drain(pipe.readEnd, output)) {
        endProcess(process, kExcessiveOutputExitCode);
        return fail(error, L"The archive tool returned excessive output.");
    }
    pipe.readEnd.reset();
    static_cast<void>(waitForEnd(process, kWaitForever));
    return exitCodeOf(process, kUnknownExitCode) == 0 ||
           fail(error, L"The Windows archive tool rejected the update package.");
}

}  // namespace vorthmere::update
