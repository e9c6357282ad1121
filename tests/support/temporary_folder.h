#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vorthmere::update::testing {

/// A new, empty folder in the system's temporary folder. The destructor removes it with its content.
///
/// Removal never enters a link, so a test may plant links that lead out of the folder. What cannot be removed, such as
/// a file that another process still holds, stays without an error.
class TemporaryFolder {
public:
    /// @throws std::filesystem::filesystem_error when the folder cannot be created
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const {
        return path_;
    }

    /// The path of something inside the folder.
    [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& relative) const {
        return path_ / relative;
    }

private:
    std::filesystem::path path_;
};

/// Writes a file byte for byte, with the folders above it; an existing file is replaced.
///
/// @throws std::ios_base::failure or std::filesystem::filesystem_error, so that a broken fixture ends the test
void writeFile(const std::filesystem::path& file, std::string_view content);

/// Reads a whole file byte for byte.
///
/// @throws std::ios_base::failure when it cannot be opened or read
[[nodiscard]] std::string readFile(const std::filesystem::path& file);

}  // namespace vorthmere::update::testing
