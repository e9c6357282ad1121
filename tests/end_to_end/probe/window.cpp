#include <windows.h>
// windows.h has to come first.
#include <commctrl.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "tests/end_to_end/probe/progress_window_view.h"
#include "tests/end_to_end/probe/started_process.h"
#include "tests/end_to_end/probe/subcommands.h"
#include "tests/end_to_end/probe/user_input.h"

namespace vorthmere::probe {
namespace {

constexpr UINT kAnswerLimitMs = 60'000;

template <typename... Values>
void printFormatted(const wchar_t* format, Values... values) {
    std::array<wchar_t, 1024> line{};
    swprintf(line.data(), line.size(), format, values...);
    printLine(line.data());
}

RECT clientRectangle(HWND control, HWND parent) {
    RECT area{};
    GetWindowRect(control, &area);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

DWORD styleOf(HWND window, int which) {
    return static_cast<DWORD>(GetWindowLongW(window, which));
}

void describe(HWND window) {
    RECT area{};
    RECT workArea{};
    GetWindowRect(window, &area);
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &workArea, 0);
    printFormatted(L"%ls '%ls' style=%08lX extended=%08lX", className(window).c_str(), windowText(window).c_str(),
                   styleOf(window, GWL_STYLE), styleOf(window, GWL_EXSTYLE));
    printFormatted(L"size=%ldx%ld", area.right - area.left, area.bottom - area.top);
    // Twice the distance between the centres, so that half pixels count.
    printFormatted(L"off centre=%ld,%ld", area.left + area.right - workArea.left - workArea.right,
                   area.top + area.bottom - workArea.top - workArea.bottom);
    for (const HWND child : childWindows(window)) {
        const RECT place = clientRectangle(child, window);
        printFormatted(L"%ls '%ls' style=%08lX extended=%08lX id=%d at %ld,%ld %ldx%ld", className(child).c_str(),
                       windowText(child).c_str(), styleOf(child, GWL_STYLE), styleOf(child, GWL_EXSTYLE),
                       GetDlgCtrlID(child), place.left, place.top, place.right - place.left, place.bottom - place.top);
    }
}

HWND focusOf(HWND window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

LRESULT ask(HWND window, UINT message) {
    DWORD_PTR answer = 0;
    SendMessageTimeoutW(window, message, 0, 0, SMTO_NORMAL, kAnswerLimitMs, &answer);
    return static_cast<LRESULT>(answer);
}

void look(const ProgressWindowView& view) {
    const ProgressWindowView::Texts texts = view.read();
    printLine(L"status=" + texts.status);
    printLine(L"detail=" + texts.detail);
    printFormatted(L"position=%d", static_cast<int>(ask(view.progressBar(), PBM_GETPOS)));
    printLine(IsWindowVisible(view.closeButton()) ? L"button=visible" : L"button=hidden");
    printLine(focusOf(view.window()) == view.closeButton() ? L"focus=button" : L"focus=elsewhere");
}

void measureAnswer(HWND window) {
    const auto asked = std::chrono::steady_clock::now();
    ask(window, WM_NULL);
    const auto waited = std::chrono::steady_clock::now() - asked;
    printFormatted(L"%lld",
                   static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(waited).count()));
}

void printPlace(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    printFormatted(L"%ld %ld %ld %ld", area.left, area.top, area.right - area.left, area.bottom - area.top);
}

void post(HWND window, std::istringstream& words) {
    UINT message = 0;
    WPARAM wParam = 0;
    words >> message >> wParam;
    printLine(PostMessageW(window, message, wParam, 0) ? L"posted" : L"not posted");
}

/// Reads one line of standard input and answers it; false at the end of input.
bool answerNext(const StartedProcess& updater, const ProgressWindowView& view) {
    std::string line;
    if (!std::getline(std::cin, line)) return false;
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (command == "describe")
        describe(view.window());
    else if (command == "look")
        look(view);
    else if (command == "click-button")
        clickAt(view.window(), centreOf(view.closeButton()));
    else if (command == "click-close-box")
        clickAt(view.window(), closeBoxOf(view.window()));
    else if (command == "press-alt-f4")
        pressAltF4(view.window());
    else if (command == "press-space")
        pressSpace(view.window());
    else if (command == "measure-answer")
        measureAnswer(view.window());
    else if (command == "place")
        printPlace(view.window());
    else if (command == "post")
        post(view.window(), words);
    else if (command == "exit-code")
        printFormatted(L"0x%08lX", updater.waitForExitCode());
    else
        printLine(L"unknown command");
    printLine(L".");
    return true;
}

}  // namespace

int window(Arguments arguments) {
    if (arguments.empty()) return kUsageError;
    const StartedProcess updater = startProcess(arguments);
    if (!updater.process) return 1;
    const ProgressWindowView view(waitForWindow(updater));
    printFormatted(L"process=%04lx", updater.id);
    printLine(view.window() ? L"window=" + className(view.window()) : L"window=");
    printLine(L".");
    while (answerNext(updater, view)) {
    }
    return 0;
}

}  // namespace vorthmere::probe
