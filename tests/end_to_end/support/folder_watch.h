#pragma once

#include <sys/inotify.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "tests/end_to_end/support/child_process.h"

namespace vorthmere::end_to_end {

/// Something that happened to an entry of a watched folder.
struct FolderEvent {
    std::filesystem::path path;
    std::uint32_t what = 0;  ///< an IN_... value
};

/// Reports in order what happens in folders after they were added.
class FolderWatch {
public:
    FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    ~FolderWatch();

    /// @param what the events wanted, IN_... values
    void add(const std::filesystem::path& folder, std::uint32_t what);
    void addTree(const std::filesystem::path& folder, std::uint32_t what);

    /// The next event, or nothing when none came in time.
    [[nodiscard]] std::optional<FolderEvent> next(Milliseconds timeLimit);

private:
    int descriptor_;
    std::map<int, std::filesystem::path> folders_;
    std::string unread_;
};

}  // namespace vorthmere::end_to_end
