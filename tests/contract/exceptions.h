#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vorthmere::update::contract {

/// A rule of Windows that Wine does not keep.
struct WineException {
    std::string_view rule;        ///< as the test names it
    std::uint32_t wineGives;      ///< Windows' number, 0 for success
    std::string_view wineLeaves;  ///< the tree afterwards, or what was read, where the test looks at it
    std::string_view reason;
    bool isNeededByRootAlone = false;  ///< Wine keeps the rule when another user runs it
};

/// All of them. A test fails under Wine when one of them is not needed.
[[nodiscard]] std::span<const WineException> wineExceptions();

}  // namespace vorthmere::update::contract
