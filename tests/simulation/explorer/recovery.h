#pragma once

#include <string>
#include <vector>

#include "tests/simulation/machine.h"

namespace vorthmere::update::simulation {

/// What README.md tells a player to do when an update was cut off: copies everything in ".kvn-update\backup" into the
/// game's folder and replaces what is there, as the file manager does. Renames a folder with the name of a file first.
///
/// @return the paths that could not be copied
std::vector<std::string> recover(Machine& machine);

}  // namespace vorthmere::update::simulation
