#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/split_mix.h"

namespace vorthmere::update::simulation {

/// A record of choices: "2.0.143.1" repeats exactly what was done with it.
using Choices = std::vector<std::uint32_t>;

[[nodiscard]] std::string recordOf(const Choices& choices);

/// Nothing for a text that is no record.
[[nodiscard]] std::optional<Choices> choicesOf(std::string_view text);

/// Where an exploration takes its choices from, each "a number up to n", and what it took.
///
/// One tape serves for all: with next() it visits every combination, with a seed it draws, and given a record it
/// replays.
class Tape {
public:
    /// Takes `given` first (a number above its limit becomes the limit), then zeros.
    explicit Tape(Choices given = {}) : given_(std::move(given)) {}

    /// Takes `given` first, then draws.
    Tape(Choices given, std::uint64_t seed) : given_(std::move(given)), numbers_(seed), draws_(true) {}

    /// A number from 0 to `most`.
    std::size_t upTo(std::size_t most);

    [[nodiscard]] bool coin() {
        return upTo(1) == 1;
    }

    /// One element of a range that is not empty.
    template <typename Range>
    [[nodiscard]] const auto& anyOf(const Range& range) {
        return range[upTo(std::size(range) - 1)];
    }

    /// What was taken so far.
    [[nodiscard]] const Choices& taken() const {
        return taken_;
    }

    /// The record after this one, counted up like an odometer; nothing after the last record.
    ///
    /// @param fixed this many leading numbers stay as they are
    [[nodiscard]] std::optional<Choices> next(std::size_t fixed = 0) const;

private:
    Choices given_;
    Choices taken_;
    Choices limits_;
    testing::SplitMix numbers_{0};
    bool draws_ = false;
};

/// A smaller record for which `fails` still holds: shorter, or with lower numbers.
///
/// @param fixed this many leading numbers stay as they are
/// @param tries most calls of `fails`
[[nodiscard]] Choices shrunk(Choices choices, std::size_t fixed, std::size_t tries,
                             const std::function<bool(const Choices&)>& fails);

}  // namespace vorthmere::update::simulation
