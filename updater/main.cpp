#include <windows.h>
// windows.h has to come first.
#include <shellapi.h>

#include <memory>
#include <string>

#include "updater/command_line.h"
#include "updater/update_run.h"

namespace {

using vorthmere::update::Arguments;

constexpr int kCommandLineRejected = 2;

struct LocalMemoryDeleter {
    void operator()(wchar_t** memory) const noexcept {
        LocalFree(memory);
    }
};

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetProcessDPIAware();

    int argc = 0;
    std::unique_ptr<wchar_t*[], LocalMemoryDeleter> argv(CommandLineToArgvW(GetCommandLineW(), &argc));
    if (!argv) return kCommandLineRejected;

    Arguments arguments;
    std::wstring error;
    const bool accepted = vorthmere::update::parseArguments(argc, argv.get(), arguments, error);
    argv.reset();
    if (!accepted) {
        if (!arguments.testNoUi) MessageBoxW(nullptr, error.c_str(), L"Kelvane Updater", MB_ICONERROR);
        return kCommandLineRejected;
    }
    return vorthmere::update::runUpdate(std::move(arguments), error, {});
}
