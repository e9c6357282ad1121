#include "publisher/entry_facts.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace vorthmere::publish {
namespace {

constexpr mode_t kReadByAll = S_IRUSR | S_IRGRP | S_IROTH;
constexpr mode_t kEnteredByAll = S_IXUSR | S_IXGRP | S_IXOTH;

EntryKind kindOf(mode_t mode) {
    if (S_ISREG(mode)) return EntryKind::file;
    if (S_ISDIR(mode)) return EntryKind::folder;
    return S_ISLNK(mode) ? EntryKind::link : EntryKind::special;
}

EntryFacts look(const std::filesystem::path& path, int flags, std::error_code& failure) {
    failure.clear();
    struct stat status {};
    if (fstatat(AT_FDCWD, path.c_str(), &status, flags) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) failure.assign(errno, std::generic_category());
        return {};
    }
    EntryFacts facts;
    facts.kind = kindOf(status.st_mode);
    facts.size = facts.kind == EntryKind::file ? static_cast<std::uint64_t>(status.st_size) : 0;
    const mode_t wanted = facts.kind == EntryKind::folder ? kEnteredByAll : kReadByAll;
    facts.everybodyMayRead = (status.st_mode & wanted) == wanted;
    return facts;
}

}  // namespace

EntryFacts factsOf(const std::filesystem::path& path, std::error_code& failure) {
    return look(path, AT_SYMLINK_NOFOLLOW, failure);
}

EntryFacts factsOfTarget(const std::filesystem::path& path, std::error_code& failure) {
    return look(path, 0, failure);
}

}  // namespace vorthmere::publish
