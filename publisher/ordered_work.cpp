#include "publisher/ordered_work.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "publisher/interruption.h"

namespace vorthmere::publish {
namespace {

using Make = std::function<bool(std::size_t index, PackedPart& part, std::string& error)>;
using Take = std::function<bool(std::size_t index, const PackedPart& part, std::string& error)>;

constexpr std::size_t kMostParts = 64;
constexpr std::size_t kPartsForEachThread = 4;

class OrderedWork {
public:
    OrderedWork(std::size_t count, const Make& make)
        : count_(count),
          make_(make),
          threads_(std::min<std::size_t>(count, std::max(1U, std::thread::hardware_concurrency()))),
          waiting_(std::clamp<std::size_t>(threads_ * kPartsForEachThread, 1, kMostParts)) {}

    bool run(const Take& take, std::string& error) {
        {
            std::vector<std::jthread> makers;
            for (std::size_t i = 0; i < threads_; ++i)
                makers.emplace_back([this] { makeParts(); });
            takeParts(take);
        }
        if (thrown_) std::rethrow_exception(thrown_);
        error = error_;
        return !hasFailed_;
    }

private:
    void makeParts() {
        for (std::unique_lock lock(guard_);;) {
            changed_.wait(lock, [this] { return hasFailed_ || next_ == count_ || next_ < taken_ + waiting_.size(); });
            if (hasFailed_ || next_ == count_) return;
            const std::size_t index = next_++;
            lock.unlock();
            PackedPart part;
            std::string fault;
            std::exception_ptr exception;
            const bool made = tryToMake(index, part, fault, exception);
            lock.lock();
            if (made)
                waiting_[index % waiting_.size()] = std::move(part);
            else
                fail(fault, exception);
            changed_.notify_all();
        }
    }

    bool tryToMake(std::size_t index, PackedPart& part, std::string& fault, std::exception_ptr& exception) const {
        try {
            return make_(index, part, fault);
        } catch (...) {
            exception = std::current_exception();
            return false;
        }
    }

    void takeParts(const Take& take) {
        for (std::size_t index = 0; index < count_; ++index) {
            std::unique_lock lock(guard_);
            std::optional<PackedPart>& place = waiting_[index % waiting_.size()];
            changed_.wait(lock, [&] { return hasFailed_ || place.has_value(); });
            if (hasFailed_) return;
            const PackedPart part = std::move(*place);
            place.reset();
            lock.unlock();
            std::string fault;
            const bool isTaken = isInterrupted() ? false : take(index, part, fault);
            if (!isTaken && fault.empty() && isInterrupted()) fault = interruptionSentence();
            lock.lock();
            taken_ = index + 1;
            if (!isTaken) fail(fault, nullptr);
            changed_.notify_all();
        }
    }

    void fail(const std::string& fault, const std::exception_ptr& exception) {
        if (hasFailed_) return;
        hasFailed_ = true;
        error_ = fault;
        thrown_ = exception;
    }

    const std::size_t count_;
    const Make& make_;
    const std::size_t threads_;
    std::mutex guard_;
    std::condition_variable changed_;
    std::vector<std::optional<PackedPart>> waiting_;
    std::size_t next_ = 0;
    std::size_t taken_ = 0;
    bool hasFailed_ = false;
    std::string error_;
    std::exception_ptr thrown_;
};

}  // namespace

bool forEachInOrder(std::size_t count, const Make& make, const Take& take, std::string& error) {
    return OrderedWork(count, make).run(take, error);
}

}  // namespace vorthmere::publish
