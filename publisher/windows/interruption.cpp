#include "publisher/interruption.h"

#include <windows.h>

#include <atomic>

#include "publisher/interruption_signal.h"

namespace vorthmere::publish {
namespace {

/// Event numbers begin with 0.
std::atomic<int> received{0};

/// How long Windows lets a program run after asking it to end.
constexpr DWORD kTimeToEnd = 20'000;

/// The exit code of a program that Ctrl+C has ended.
constexpr UINT kEndedByControl = 0xC000013A;

BOOL WINAPI rememberEvent(DWORD event) {
    received = static_cast<int>(event) + 1;
    // For these events Windows ends the process when this returns, so wait here for the work to end.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT) Sleep(kTimeToEnd);
    return TRUE;
}

}  // namespace

void watchForInterruptions() {
    SetConsoleCtrlHandler(rememberEvent, TRUE);
}

int receivedSignal() {
    return received;
}

void endAsInterrupted() {
    if (received != 0) ExitProcess(kEndedByControl);
}

}  // namespace vorthmere::publish
