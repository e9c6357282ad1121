#include "publisher/deflate_trial.h"

#include <zlib.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace vorthmere::publish {
namespace {

/// More than the 32 KiB that deflate looks back, so that repetitions are found.
constexpr std::size_t kTriedBytes = 65536;

/// A file that would shrink by less than 3 % is stored.
constexpr std::uint64_t kWorthwhilePercent = 97;

}  // namespace

void DeflateTrial::add(std::span<const char> block) {
    const std::span<const char> part = block.first(std::min(block.size(), kTriedBytes));
    std::vector<unsigned char> input(part.begin(), part.end());
    uLongf length = compressBound(static_cast<uLong>(input.size()));
    std::vector<unsigned char> output(length);
    if (compress2(output.data(), &length, input.data(), static_cast<uLong>(input.size()), Z_BEST_SPEED) != Z_OK)
        throw std::runtime_error("There is no memory left to try how far a file shrinks.");
    tried_ += input.size();
    deflated_ += length;
}

bool DeflateTrial::isWorthIt() const {
    return deflated_ * 100 < tried_ * kWorthwhilePercent;
}

}  // namespace vorthmere::publish
