#include "platform/programs.h"

#include <windows.h>

#include <array>

#include "platform/windows/windows_result.h"

namespace vorthmere::update {
namespace {

struct Start {
    const std::filesystem::path& program;
    std::wstring& commandLine;
    const std::filesystem::path& workingFolder;
    BOOL inheritHandles = FALSE;
    DWORD flags = 0;
};

ProcessHandle createProcess(const Start& start, STARTUPINFOW startup, std::error_code& failure) {
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION created{};
    failure =
        resultOf(CreateProcessW(start.program.c_str(), start.commandLine.data(), nullptr, nullptr, start.inheritHandles,
                                start.flags, nullptr, start.workingFolder.c_str(), &startup, &created));
    const ProcessHandle thread(created.hThread);
    return ProcessHandle(created.hProcess);
}

}  // namespace

void closeProcessHandle(void* handle) noexcept {
    closeQuietly(handle, CloseHandle);
}

std::error_code openPipe(Pipe& pipe) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return resultOf(CreatePipe(pipe.readEnd.receive(), pipe.writeEnd.receive(), &inheritable, 0) &&
                    SetHandleInformation(pipe.readEnd.get(), HANDLE_FLAG_INHERIT, 0));
}

ProcessHandle startCaptured(const std::filesystem::path& program, std::wstring commandLine,
                            const std::filesystem::path& workingFolder, const FileHandle& output,
                            std::error_code& failure) {
    STARTUPINFOW startup{};
    startup.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = output.get();
    startup.hStdError = output.get();
    return createProcess({program, commandLine, workingFolder, TRUE, CREATE_NO_WINDOW}, startup, failure);
}

std::error_code startProgram(const std::filesystem::path& program, std::wstring commandLine,
                             const std::filesystem::path& workingFolder) {
    std::error_code failure;
    const ProcessHandle process =
        createProcess({program, commandLine, workingFolder, FALSE, CREATE_DEFAULT_ERROR_MODE}, {}, failure);
    return failure;
}

ProcessHandle openProcess(std::uint32_t processId, std::error_code& failure) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, processId);
    failure = resultOf(process != nullptr);
    return ProcessHandle(process);
}

bool waitForEnd(const ProcessHandle& process, std::uint32_t milliseconds) {
    static_assert(kWaitForever == INFINITE);
    return WaitForSingleObject(process.get(), milliseconds) == WAIT_OBJECT_0;
}

void endProcess(const ProcessHandle& process, std::uint32_t exitCode) {
    TerminateProcess(process.get(), exitCode);
}

std::uint32_t exitCodeOf(const ProcessHandle& process, std::uint32_t unknown) {
    DWORD exitCode = unknown;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}

std::filesystem::path systemFolder() {
    std::array<wchar_t, kMaxSystemFolderLength + 1> folder{};
    const UINT length = GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
    if (length == 0 || length > kMaxSystemFolderLength) return {};
    return folder.data();
}

}  // namespace vorthmere::update
