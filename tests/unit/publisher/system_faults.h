#pragma once

#include <filesystem>

namespace vorthmere::publish::testing {

/// Calls to the system that fail in this program as no test could make them fail by what it does to the disk. One
/// object of each kind at a time.

/// While it lives, nothing can be locked.
class FailingLocks {
public:
    /// @param errorNumber what flock() leaves in errno
    explicit FailingLocks(int errorNumber);
    ~FailingLocks();
    FailingLocks(const FailingLocks&) = delete;
    FailingLocks& operator=(const FailingLocks&) = delete;
};

/// While it lives, reading the entries of one folder breaks off behind the first.
class FailingListing {
public:
    /// @param errorNumber what readdir() leaves in errno
    FailingListing(const std::filesystem::path& folder, int errorNumber);
    ~FailingListing();
    FailingListing(const FailingListing&) = delete;
    FailingListing& operator=(const FailingListing&) = delete;
};

/// While it lives, it notes which folders the program waits for to be on the disk.
class SyncedFolders {
public:
    SyncedFolders();
    ~SyncedFolders();
    SyncedFolders(const SyncedFolders&) = delete;
    SyncedFolders& operator=(const SyncedFolders&) = delete;

    [[nodiscard]] static bool holds(const std::filesystem::path& folder);
};

}  // namespace vorthmere::publish::testing
