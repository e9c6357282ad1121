#include <array>
#include <cstdio>

#include "tests/end_to_end/probe/progress_window_view.h"
#include "tests/end_to_end/probe/started_process.h"
#include "tests/end_to_end/probe/subcommands.h"

namespace vorthmere::probe {

int outcome(Arguments arguments) {
    if (arguments.empty()) return kUsageError;
    const StartedProcess updater = startProcess(arguments);
    if (!updater.process) return 1;
    const HWND window = waitForWindow(updater);
    if (!window) {
        std::fputs("the updater shows no window\n", stderr);
        return 1;
    }
    const ProgressWindowView view(window);
    ProgressWindowView::Texts texts;
    while (!view.readOutcome(texts) && !updater.hasEnded(kOutcomePollMs)) {
    }
    printLine(L"status=" + texts.status);
    printLine(L"detail=" + texts.detail);
    if (IsWindowVisible(view.closeButton())) SendMessageW(view.closeButton(), BM_CLICK, 0, 0);
    std::array<wchar_t, 16> exitCode{};
    swprintf(exitCode.data(), exitCode.size(), L"exit=0x%08lX", updater.waitForExitCode());
    printLine(exitCode.data());
    return 0;
}

}  // namespace vorthmere::probe
