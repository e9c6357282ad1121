#pragma once

#include "update/manifest.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Maps the byte counts of the complete package's download to its part of the run, 12 % to 65 %.
///
/// @param manifest its `size` is used when the server tells no length
/// @param progress receives the texts and percentages; may be empty
/// @return a callback that borrows both
[[nodiscard]] ByteProgressCallback downloadProgress(const Manifest& manifest, const ProgressCallback& progress);

}  // namespace vorthmere::update
