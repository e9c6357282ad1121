#pragma once

#include "tests/kit/report.h"

namespace vorthmere::kit {

/// Runs whole updates of a sample game from local files and reports how each came out.
void runUpdates(Report& report);

}  // namespace vorthmere::kit
