#include "publisher/folder_names.h"

namespace vorthmere::publish {

std::vector<std::filesystem::path> namesIn(const std::filesystem::path& folder, std::error_code& failure) {
    std::vector<std::filesystem::path> names;
    std::filesystem::directory_iterator entry(folder, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure))
        names.push_back(entry->path().filename());
    return names;
}

}  // namespace vorthmere::publish
