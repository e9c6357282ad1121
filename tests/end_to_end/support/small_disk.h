#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "tests/support/temporary_folder.h"

namespace vorthmere::end_to_end {

/// A file system in memory whose free space and number of files a test sets. The destructor unmounts it.
class SmallDisk {
public:
    SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();

    /// Empty when the disk is there, else why this machine does not allow it.
    [[nodiscard]] const std::string& reasonWhyMissing() const {
        return reasonWhyMissing_;
    }

    [[nodiscard]] const std::filesystem::path& folder() const {
        return folder_.path();
    }

    /// Leaves space for this many bytes, or for this many more files and folders, and plenty of the other.
    void leaveBytes(std::uint64_t bytes);
    void leaveFiles(std::uint64_t files);
    void leaveEverything();

private:
    void remount(const std::string& limits) const;

    update::testing::TemporaryFolder folder_;
    std::string reasonWhyMissing_;
};

}  // namespace vorthmere::end_to_end
