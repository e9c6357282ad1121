#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "tests/contract/world.h"

namespace vorthmere::update::contract {

/// What a call returned, and the tree that it left, or the bytes that it read.
struct Outcome {
    std::uint32_t number = 0;  ///< Windows' error; 0 for success
    std::string tree = {};     ///< empty when the test does not look

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

/// Compares the outcome of a call with what a rule of Windows demands or, under Wine, with the rule's exception.
///
/// @param rule the rule's name, unique among all tests
[[nodiscard]] ::testing::AssertionResult follows(const World& world, std::string_view rule, const Outcome& outcome,
                                                 const Outcome& demanded);

/// The same for a call of which only the returned error counts.
[[nodiscard]] ::testing::AssertionResult follows(const World& world, std::string_view rule,
                                                 const std::error_code& failure, std::uint32_t demanded);

}  // namespace vorthmere::update::contract
