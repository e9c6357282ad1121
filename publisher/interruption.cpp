#include "publisher/interruption.h"

#include <mutex>

#include "publisher/interruption_signal.h"

namespace vorthmere::publish {
namespace {

std::mutex reasonGuard;
std::string givenReason;

}  // namespace

void interrupt(const std::string& reason) {
    const std::lock_guard lock(reasonGuard);
    if (givenReason.empty()) givenReason = reason;
}

bool isInterrupted() {
    if (receivedSignal() != 0) return true;
    const std::lock_guard lock(reasonGuard);
    return !givenReason.empty();
}

std::string interruptionSentence() {
    const std::lock_guard lock(reasonGuard);
    return givenReason.empty() ? "Interrupted; what was begun has been removed." : givenReason;
}

}  // namespace vorthmere::publish
