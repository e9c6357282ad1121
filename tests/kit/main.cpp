// Runs all tests that need neither special rights nor a network on a real Windows, and writes a report.
//
// Usage: kit.exe [--function-tests FILTER]      (which tests of functions, in GoogleTest's form; all when not given)
#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "tests/kit/machine.h"
#include "tests/kit/report.h"
#include "tests/kit/test_programs.h"
#include "tests/kit/updates.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace vorthmere;

/// True when no other program uses the console: a double click opened it, and it closes with this program.
bool ownsItsConsole() {
    DWORD processes[2] = {};
    return GetConsoleProcessList(processes, 2) == 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    std::wstring filter = L"*";
    if (argc == 3 && std::wstring_view(argv[1]) == L"--function-tests") filter = argv[2];

    const std::filesystem::path reportFile = kit::kitFolder() / L"report.txt";
    kit::Report report(reportFile);
    {
        const update::testing::TemporaryFolder folder;
        kit::describeMachine(report, folder.path());
        kit::runUpdates(report);
        kit::runTestPrograms(report, folder.path(), filter);
    }
    const int exitCode = report.finish();
    std::printf("\nAll of this is in %s\n", kit::plainText(reportFile.native()).c_str());
    if (ownsItsConsole()) {
        std::printf("Press Enter to close this window.\n");
        static_cast<void>(std::getchar());
    }
    return exitCode;
}
