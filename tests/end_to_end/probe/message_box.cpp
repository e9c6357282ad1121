#include <cstdio>

#include "tests/end_to_end/probe/started_process.h"
#include "tests/end_to_end/probe/subcommands.h"
#include "tests/end_to_end/probe/window_reading.h"

namespace vorthmere::probe {

int messageBox(Arguments arguments) {
    if (arguments.empty()) return kUsageError;
    const StartedProcess program = startProcess(arguments);
    if (!program.process) return 1;
    const HWND box = waitForWindow(program);
    if (box) {
        printLine(L"caption=" + windowText(box));
        for (const HWND child : childWindows(box))
            if (IsWindowVisible(child)) printLine(className(child) + L"=" + windowText(child));
        SendMessageW(box, WM_COMMAND, IDOK, 0);
    }
    std::printf("exit=0x%08lX\n", program.waitForExitCode());
    return 0;
}

}  // namespace vorthmere::probe
