#include "files/folder_walk.h"

#include "platform/entries.h"

namespace vorthmere::update {

bool walkTree(const std::filesystem::path& folder, const std::function<bool(const std::filesystem::path&)>& visit,
              std::error_code& failure) {
    const std::vector<FolderEntry> entries = listFolder(folder, failure);
    if (failure) return false;
    for (const FolderEntry& entry : entries) {
        const std::filesystem::path path = folder / entry.name;
        if (!visit(path)) return false;
        const bool entered = entry.attributes.isFolder() && !entry.attributes.isReparsePoint();
        if (entered && !walkTree(path, visit, failure)) return false;
    }
    return true;
}

}  // namespace vorthmere::update
