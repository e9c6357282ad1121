#pragma once

#include "update/manifest.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Maps the byte counts of the package's download to 12 % to 65 % of the run.
///
/// @param manifest its `size` is used when the server states no length
/// @param progress receives the texts and percentages; may be empty
/// @return a callback that refers to both, which must outlive it
[[nodiscard]] ByteProgressCallback downloadProgress(const Manifest& manifest, const ProgressCallback& progress);

}  // namespace vorthmere::update
