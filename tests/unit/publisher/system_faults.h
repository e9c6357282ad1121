#pragma once

#include <filesystem>

namespace vorthmere::publish::testing {

/// Make system calls fail as no state of the disk would. At most one object of each kind may live at a time.

/// While it lives, nothing can be locked.
class FailingLocks {
public:
    /// @param errorNumber what flock() leaves in errno
    explicit FailingLocks(int errorNumber);
    ~FailingLocks();
    FailingLocks(const FailingLocks&) = delete;
    FailingLocks& operator=(const FailingLocks&) = delete;
};

/// While it lives, the listing of one folder breaks off after the first entry.
class FailingListing {
public:
    /// @param errorNumber what readdir() leaves in errno
    FailingListing(const std::filesystem::path& folder, int errorNumber);
    ~FailingListing();
    FailingListing(const FailingListing&) = delete;
    FailingListing& operator=(const FailingListing&) = delete;
};

/// While it lives, it notes which folders the program syncs to the disk.
class SyncedFolders {
public:
    SyncedFolders();
    ~SyncedFolders();
    SyncedFolders(const SyncedFolders&) = delete;
    SyncedFolders& operator=(const SyncedFolders&) = delete;

    [[nodiscard]] static bool holds(const std::filesystem::path& folder);
};

}  // namespace vorthmere::publish::testing
