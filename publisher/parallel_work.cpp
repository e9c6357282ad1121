#include "publisher/parallel_work.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "publisher/interruption.h"

namespace vorthmere::publish {

bool forEachInParallel(std::size_t count, const std::function<bool(std::size_t index, std::string& error)>& task,
                       std::string& error) {
    std::atomic<std::size_t> next{0};
    std::atomic<bool> failed{false};
    std::mutex outcome;
    std::exception_ptr thrown;

    const auto work = [&] {
        for (std::size_t index = next++; index < count && !failed; index = next++) {
            std::string fault;
            std::exception_ptr exception;
            try {
                if (isInterrupted())
                    fault = interruptionSentence();
                else if (task(index, fault))
                    continue;
            } catch (...) {
                exception = std::current_exception();
            }
            const std::lock_guard lock(outcome);
            if (failed.exchange(true)) return;
            error = fault;
            thrown = exception;
        }
    };

    {
        const std::size_t wanted = std::min<std::size_t>(count, std::max(1U, std::thread::hardware_concurrency()));
        std::vector<std::jthread> helpers;
        for (std::size_t i = 1; i < wanted; ++i)
            helpers.emplace_back(work);
        work();
    }
    if (thrown) std::rethrow_exception(thrown);
    return !failed;
}

}  // namespace vorthmere::publish
