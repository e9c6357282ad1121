#include "publisher/interruption.h"

#include <array>
#include <atomic>
#include <csignal>

#include "publisher/interruption_signal.h"

namespace vorthmere::publish {
namespace {

std::atomic<int> received{0};
static_assert(std::atomic<int>::is_always_lock_free, "A signal handler may write to it.");

extern "C" void rememberSignal(int number) {
    received = number;
}

}  // namespace

void watchForInterruptions() {
    for (const int number : std::array{SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction former {};
        // An ignored signal stays ignored, as nohup wants it.
        if (sigaction(number, nullptr, &former) == 0 && former.sa_handler == SIG_IGN) continue;
        struct sigaction action {};
        action.sa_handler = rememberSignal;
        action.sa_flags = SA_RESTART;
        sigaction(number, &action, nullptr);
    }
    // Writing to a closed pipe then fails instead of ending the process.
    std::signal(SIGPIPE, SIG_IGN);
}

int receivedSignal() {
    return received;
}

void endAsInterrupted() {
    if (received == 0) return;
    std::signal(received, SIG_DFL);
    std::raise(received);
}

}  // namespace vorthmere::publish
