#include "publisher/deflate_trial.h"

#include <zlib.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace vorthmere::publish {
namespace {

/// The tried pieces come from all over a block. Each is long enough for deflate to find repetitions.
constexpr std::size_t kPieces = 8;
constexpr std::size_t kPieceBytes = 8192;

/// A file that would shrink by less than 3 % is not deflated.
constexpr std::uint64_t kWorthwhilePercent = 97;

}  // namespace

void DeflateTrial::add(std::span<const char> block) {
    std::vector<unsigned char> input;
    if (block.size() <= kPieces * kPieceBytes)
        input.assign(block.begin(), block.end());
    else
        for (std::size_t piece = 0; piece < kPieces; ++piece) {
            const std::span<const char> part = block.subspan(block.size() / kPieces * piece, kPieceBytes);
            input.insert(input.end(), part.begin(), part.end());
        }
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
