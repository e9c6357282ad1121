#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorthmere::update::simulation {

/// The arguments of a command line as the C library of Windows splits it, the program's name first.
[[nodiscard]] std::vector<std::string> splitCommandLine(std::string_view commandLine);

}  // namespace vorthmere::update::simulation
