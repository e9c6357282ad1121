#pragma once

#include <cstdint>

#include "update/manifest.h"

namespace vorthmere::update {

/// Decides between the two ways of an update.
///
/// @param bytesToFetch sum of the sizes of the changed files
/// @return true when the changed files are fetched one by one; false when the complete package is no larger than they are
[[nodiscard]] constexpr bool updatesIncrementally(std::uint64_t bytesToFetch, const Manifest& manifest) {
    return bytesToFetch < manifest.size;
}

}  // namespace vorthmere::update
