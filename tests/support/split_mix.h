#pragma once

#include <cstdint>

namespace vorthmere::update::testing {

/// SplitMix64: random numbers that are the same with every compiler and library.
class SplitMix {
public:
    explicit SplitMix(std::uint64_t seed) : state_(seed) {}

    [[nodiscard]] std::uint64_t next() {
        std::uint64_t mixed = state_ += 0x9E3779B97F4A7C15;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
        return mixed ^ (mixed >> 31);
    }

private:
    std::uint64_t state_;
};

}  // namespace vorthmere::update::testing
