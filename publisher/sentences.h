#pragma once

#include <string>
#include <vector>

namespace vorthmere::publish {

/// Several sentences in the place of one, one a line; of very many the first ones, and how many more there are.
[[nodiscard]] std::string joinSentences(const std::vector<std::string>& sentences);

}  // namespace vorthmere::publish
