#include "bench/program/started_program.h"

#include "bench/program/require.h"
#include "install/command_line_quoting.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::bench {

DWORD runProgram(std::span<const std::wstring> words, HANDLE output) {
    std::wstring commandLine;
    for (const std::wstring& word : words)
        commandLine += (commandLine.empty() ? L"" : L" ") + update::quoteCommandLineArgument(word);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    if (output) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = output;
        startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    }
    PROCESS_INFORMATION started{};
    require(CreateProcessW(words.front().c_str(), commandLine.data(), nullptr, nullptr, output != nullptr, 0, nullptr,
                           nullptr, &startup, &started),
            "starting a program");
    const update::testing::KernelHandle thread(started.hThread);
    const update::testing::KernelHandle process(started.hProcess);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = STILL_ACTIVE;
    require(GetExitCodeProcess(process.get(), &exitCode), "asking for an exit code");
    return exitCode;
}

}  // namespace vorthmere::bench
