#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "tests/contract/world.h"

namespace vorthmere::update::contract {

/// What a call told, and what it left.
struct Outcome {
    std::uint32_t number = 0;  ///< Windows'; 0 for success
    std::string tree = {};     ///< empty when nobody looks at it

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

/// Compares the outcome of a call with that which a rule of Windows demands, or, under Wine, with what the rule's
/// exception says.
///
/// @param rule names it; unique among all tests
[[nodiscard]] ::testing::AssertionResult follows(const World& world, std::string_view rule, const Outcome& outcome,
                                                 const Outcome& demanded);

/// The same for a call of which nothing but its answer counts.
[[nodiscard]] ::testing::AssertionResult follows(const World& world, std::string_view rule,
                                                 const std::error_code& failure, std::uint32_t demanded);

/// True when the world is excused from the rule, so that what comes of it need not be looked at.
[[nodiscard]] bool isExcused(const World& world, std::string_view rule);

}  // namespace vorthmere::update::contract
