#pragma once

#include <filesystem>

namespace vorthmere::update::testing {

/// Makes a junction, which needs no privilege.
///
/// @param junction must not exist
/// @throws std::runtime_error when the file system has no junctions
void makeJunction(const std::filesystem::path& junction, const std::filesystem::path& target);

}  // namespace vorthmere::update::testing
