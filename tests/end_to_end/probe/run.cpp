#include <cstdio>

#include "install/command_line_quoting.h"
#include "platform/unique_handle.h"
#include "tests/end_to_end/probe/subcommands.h"

namespace vorthmere::probe {

int run(Arguments arguments) {
    if (arguments.empty()) return kUsageError;
    std::wstring commandLine;
    for (const std::wstring& argument : arguments)
        commandLine += (commandLine.empty() ? L"" : L" ") + update::quoteCommandLineArgument(argument);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(arguments.front().c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started)) {
        std::fprintf(stderr, "cannot start %ls: error %lu\n", arguments.front().c_str(), GetLastError());
        return 1;
    }
    const update::KernelHandle process(started.hProcess);
    const update::KernelHandle thread(started.hThread);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = 0;
    if (!GetExitCodeProcess(process.get(), &exitCode)) return 1;
    std::printf("0x%08lX\n", exitCode);
    return 0;
}

}  // namespace vorthmere::probe
