#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::end_to_end {

/// Read and write whole files; writing makes missing parent folders. Both throw when the file system refuses.

[[nodiscard]] std::string readFile(const std::filesystem::path& file);
void writeFile(const std::filesystem::path& file, std::string_view content);

/// The read-only attribute that Windows programs see under Wine.
void setReadOnly(const std::filesystem::path& file, bool readOnly = true);
[[nodiscard]] bool isReadOnly(const std::filesystem::path& file);

/// The path of a file for a Windows program.
[[nodiscard]] std::string windowsPath(const std::filesystem::path& file);

}  // namespace vorthmere::end_to_end
