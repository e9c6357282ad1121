#include "tests/support/watched_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace vorthmere::update::testing {
namespace {

std::atomic<void*> watched = nullptr;
std::atomic<int> times = 0;
void (*notify)() = nullptr;

}  // namespace

WatchedMemory::WatchedMemory(void* memory, void (*freed)()) {
    times = 0;
    notify = freed;
    watched = memory;
}

WatchedMemory::~WatchedMemory() {
    void* const memory = watched.exchange(nullptr);
    if (times > 0) std::free(memory);
}

int WatchedMemory::timesFreed() const {
    return times;
}

/// @return true when the memory is to stay
bool isKept(const void* memory) {
    if (memory == nullptr || memory != watched) return false;
    ++times;
    if (notify != nullptr) notify();
    return true;
}

}  // namespace vorthmere::update::testing

void operator delete(void* memory) noexcept {
    if (!vorthmere::update::testing::isKept(memory)) std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
