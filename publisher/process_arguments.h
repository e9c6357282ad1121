#pragma once

#include <string>
#include <vector>

namespace vorthmere::publish {

/// The command line's arguments without the program's name, in UTF-8 on every system.
[[nodiscard]] std::vector<std::string> processArguments(int argc, char** argv);

}  // namespace vorthmere::publish
