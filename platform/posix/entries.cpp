#include "platform/entries.h"

#include <sys/stat.h>

#include <cerrno>

namespace vorthmere::update {

EntryFacts entryFacts(const std::filesystem::path& path, std::error_code& failure) {
    return targetFacts(path, failure);
}

EntryFacts targetFacts(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        failure.assign(errno, std::generic_category());
        return {};
    }
    const bool isFile = S_ISREG(status.st_mode);
    const std::uint32_t bits = S_ISDIR(status.st_mode) ? EntryAttributes::kFolder : 0;
    return {{isFile ? 0 : bits}, isFile ? static_cast<std::uint64_t>(status.st_size) : 0};
}

}  // namespace vorthmere::update
