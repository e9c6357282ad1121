#pragma once

#include <string>
#include <vector>

namespace vorthmere::publish {

/// Joins sentences, one a line. Of very many it keeps the first ones and tells how many more there are.
[[nodiscard]] std::string joinSentences(const std::vector<std::string>& sentences);

}  // namespace vorthmere::publish
