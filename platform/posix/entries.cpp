#include "platform/entries.h"

#include <sys/stat.h>

#include <cerrno>

#include "platform/failure.h"

namespace vorthmere::update {
namespace {

using StatusCall = int (*)(const char* path, struct stat* status);

std::uint32_t attributesOf(mode_t mode) {
    if (S_ISREG(mode)) return 0;
    if (S_ISDIR(mode)) return EntryAttributes::kFolder;
    return S_ISLNK(mode) ? EntryAttributes::kReparsePoint : EntryAttributes::kDevice;
}

EntryFacts factsBy(StatusCall call, const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    struct stat status {};
    if (call(path.c_str(), &status) != 0) {
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        failure = isMissing ? failureOf(static_cast<std::uint32_t>(WindowsError::fileNotFound))
                            : std::error_code(errno, std::generic_category());
        return {};
    }
    return {{attributesOf(status.st_mode)}, static_cast<std::uint64_t>(status.st_size)};
}

}  // namespace

EntryFacts entryFacts(const std::filesystem::path& path, std::error_code& failure) {
    return factsBy(lstat, path, failure);
}

EntryFacts targetFacts(const std::filesystem::path& path, std::error_code& failure) {
    return factsBy(stat, path, failure);
}

}  // namespace vorthmere::update
