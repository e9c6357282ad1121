#include "tests/end_to_end/probe/started_process.h"

#include <cstdio>

#include "install/command_line_quoting.h"

namespace vorthmere::probe {

bool StartedProcess::hasEnded(DWORD timeLimitMs) const {
    return WaitForSingleObject(process.get(), timeLimitMs) == WAIT_OBJECT_0;
}

DWORD StartedProcess::waitForExitCode() const {
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = STILL_ACTIVE;
    GetExitCodeProcess(process.get(), &exitCode);
    return exitCode;
}

StartedProcess startProcess(std::span<const std::wstring> words) {
    std::wstring commandLine;
    for (const std::wstring& word : words)
        commandLine += (commandLine.empty() ? L"" : L" ") + update::quoteCommandLineArgument(word);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(words.front().c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started)) {
        std::fprintf(stderr, "cannot start %ls: error %lu\n", words.front().c_str(), GetLastError());
        return {};
    }
    const update::testing::KernelHandle thread(started.hThread);
    return {update::testing::KernelHandle(started.hProcess), started.dwProcessId};
}

}  // namespace vorthmere::probe
