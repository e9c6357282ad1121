#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace vorthmere::end_to_end {

/// One entry of a tree as it was seen.
struct TreeEntry {
    enum class Kind { file, folder, link, other };

    Kind kind = Kind::other;
    std::string content;       ///< a file's SHA-256, a link's target, else empty
    std::uint64_t bytes = 0;   ///< a file's size
    bool readOnly = false;     ///< a file's attribute
    std::int64_t changed = 0;  ///< a file's time of last change, in nanoseconds

    friend bool operator==(const TreeEntry&, const TreeEntry&) = default;
};

/// Everything below a folder, by "/" separated path relative to it. Links are recorded and never followed.
using TreeSnapshot = std::map<std::string, TreeEntry>;

/// @param wanted tells by relative path what to record and enter; empty for everything
[[nodiscard]] TreeSnapshot takeSnapshot(const std::filesystem::path& root,
                                        const std::function<bool(const std::string& path)>& wanted = {});

/// Without the folders: a folder that became empty, or was created for a file, is no loss.
[[nodiscard]] TreeSnapshot filesOnly(const TreeSnapshot& snapshot);

/// One line for each entry that is missing, new or different; empty when the snapshots are equal.
[[nodiscard]] std::string describeDifferences(const TreeSnapshot& before, const TreeSnapshot& after);

}  // namespace vorthmere::end_to_end
