#include "publisher/interruption.h"

#include <windows.h>

#include <atomic>

#include "publisher/interruption_signal.h"

namespace vorthmere::publish {
namespace {

/// Event numbers begin with 0.
std::atomic<int> received{0};

/// As long as Windows lets a program that is asked to end go on.
constexpr DWORD kTimeToEnd = 20'000;

/// What a program ends with that Ctrl+C has ended.
constexpr UINT kEndedByControl = 0xC000013A;

BOOL WINAPI rememberEvent(DWORD event) {
    received = static_cast<int>(event) + 1;
    // After the return from one of these the process is ended, so the work gets its time here.
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
