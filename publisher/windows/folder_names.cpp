#include "publisher/folder_names.h"

#include "platform/entries.h"

namespace vorthmere::publish {

// When a path is longer than Windows takes in its plain form, the standard library lists the current folder instead.
std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& failure) {
    std::vector<std::filesystem::path> names;
    for (update::FolderEntry& entry : update::listFolder(folder, failure))
        names.push_back(std::move(entry.name));
    return names;
}

}  // namespace vorthmere::publish
