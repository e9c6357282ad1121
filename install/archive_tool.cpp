#include "install/archive_tool.h"

#include <array>

#include "platform/unique_handle.h"

namespace vorthmere::update {
namespace {

constexpr std::size_t kReadChunkBytes = 8192;
constexpr UINT kExcessiveOutputExitCode = 9;

struct Pipe {
    KernelHandle readEnd;
    KernelHandle writeEnd;
};

/// Only the write end may reach the child: a read end inherited by it would keep the pipe from ever breaking.
bool openPipe(Pipe& pipe) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreatePipe(pipe.readEnd.receive(), pipe.writeEnd.receive(), &inheritable, 0) &&
           SetHandleInformation(pipe.readEnd.get(), HANDLE_FLAG_INHERIT, 0);
}

std::wstring buildCommandLine(const std::filesystem::path& toolPath, const std::vector<std::wstring>& arguments) {
    std::wstring commandLine = quoteCommandLineArgument(toolPath.native());
    for (const std::wstring& argument : arguments)
        commandLine += L" " + quoteCommandLineArgument(argument);
    return commandLine;
}

bool startHidden(const std::filesystem::path& toolPath, std::wstring commandLine,
                 const std::filesystem::path& workingFolder, HANDLE outputPipe, KernelHandle& process) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = outputPipe;
    startup.hStdError = outputPipe;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(toolPath.c_str(), commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                        workingFolder.c_str(), &startup, &started))
        return false;
    const KernelHandle thread(started.hThread);
    process.reset(started.hProcess);
    return true;
}

/// Reads until the pipe breaks, which is how the tool's end shows. False when the output passes its limit.
bool drain(HANDLE readEnd, std::string& output) {
    std::array<char, kReadChunkBytes> chunk{};
    DWORD count = 0;
    while (ReadFile(readEnd, chunk.data(), static_cast<DWORD>(chunk.size()), &count, nullptr) && count > 0) {
        if (output.size() + count > kMaxArchiveToolOutputBytes) return false;
        output.append(chunk.data(), count);
    }
    return true;
}

}  // namespace

bool runArchiveTool(const std::filesystem::path& toolPath, const std::vector<std::wstring>& arguments,
                    const std::filesystem::path& workingFolder, std::string& output, std::wstring& error) {
    Pipe pipe;
    if (!openPipe(pipe)) {
        error = L"Unable to capture the archive tool output.";
        return false;
    }

    KernelHandle process;
    const bool started =
        startHidden(toolPath, buildCommandLine(toolPath, arguments), workingFolder, pipe.writeEnd.get(), process);
    pipe.writeEnd.reset();
    if (!started) {
        pipe.readEnd.reset();
        error = L"Unable to start the Windows archive tool (error " + std::to_wstring(GetLastError()) + L").";
        return false;
    }

    output.clear();
    if (!drain(pipe.readEnd.get(), output)) {
        TerminateProcess(process.get(), kExcessiveOutputExitCode);
        error = L"The archive tool returned excessive output.";
        return false;
    }
    pipe.readEnd.reset();
    WaitForSingleObject(process.get(), INFINITE);

    DWORD exitCode = 1;
    GetExitCodeProcess(process.get(), &exitCode);
    if (exitCode != 0) {
        error = L"The Windows archive tool rejected the update package.";
        return false;
    }
    return true;
}

}  // namespace vorthmere::update
