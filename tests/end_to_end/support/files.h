#pragma once

#include <filesystem>
#include <string>

#include "tests/support/temporary_folder.h"

namespace vorthmere::end_to_end {

using update::testing::readFile;
using update::testing::writeFile;

/// The read-only attribute that Windows programs see under Wine.
void setReadOnly(const std::filesystem::path& file, bool readOnly = true);
[[nodiscard]] bool isReadOnly(const std::filesystem::path& file);

/// The path of a file for a Windows program.
[[nodiscard]] std::string windowsPath(const std::filesystem::path& file);

}  // namespace vorthmere::end_to_end
