#include <windows.h>
// windows.h has to come first.
#include <commctrl.h>
#include <shellapi.h>

#include <exception>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "update/exit_code.h"
#include "updater/command_line.h"
#include "updater/progress_window.h"
#include "updater/update_run.h"
#include "updater/worker.h"

namespace {

using namespace vorthmere::update;

constexpr int asNumber(ExitCode code) {
    return static_cast<int>(code);
}

struct LocalMemoryDeleter {
    void operator()(wchar_t** memory) const noexcept {
        LocalFree(memory);
    }
};

void initialiseProgressBar() {
    const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
}

void dispatchMessages() {
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int showCommand) {
    // Before anything loads a DLL by its name alone: the system's DLLs must not come from the game's folder.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    std::set_terminate(endAbnormally);
    SetProcessDPIAware();

    int argc = 0;
    std::unique_ptr<wchar_t*[], LocalMemoryDeleter> argv(CommandLineToArgvW(GetCommandLineW(), &argc));
    if (!argv) return asNumber(ExitCode::commandLineRejected);

    Arguments arguments;
    std::wstring error;
    const bool accepted = parseArguments(argc, argv.get(), arguments, error);
    argv.reset();
    if (!accepted) {
        if (!arguments.testNoUi) MessageBoxW(nullptr, error.c_str(), L"Kelvane Updater", MB_ICONERROR);
        return asNumber(ExitCode::commandLineRejected);
    }
    if (arguments.testNoUi) return runUpdate(std::move(arguments), error, {});

    initialiseProgressBar();
    if (!registerProgressWindow(instance)) return asNumber(ExitCode::windowClassNotRegistered);
    WindowState state;
    state.arguments = std::move(arguments);
    if (!createProgressWindow(instance, state)) return asNumber(ExitCode::windowNotCreated);
    ShowWindow(state.window, showCommand);
    UpdateWindow(state.window);

    std::thread worker(runWorker, state.arguments, state.window);
    dispatchMessages();
    worker.join();
    return state.outcomeCode;
}
