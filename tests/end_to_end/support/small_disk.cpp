#include "tests/end_to_end/support/small_disk.h"

#include <sys/mount.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace vorthmere::end_to_end {
namespace {

constexpr const char* kRoomy = "size=64m,nr_inodes=100000";

struct statvfs usage(const std::filesystem::path& folder) {
    struct statvfs found {};
    if (statvfs(folder.c_str(), &found) != 0) throw std::system_error(errno, std::generic_category(), folder.string());
    return found;
}

}  // namespace

SmallDisk::SmallDisk() {
    if (mount("kvn-small-disk", folder_.path().c_str(), "tmpfs", 0, kRoomy) != 0)
        reasonWhyMissing_ = std::string("no file system can be mounted: ") + std::strerror(errno);
}

SmallDisk::~SmallDisk() {
    if (reasonWhyMissing_.empty()) umount2(folder_.path().c_str(), MNT_DETACH);
}

void SmallDisk::leaveBytes(std::uint64_t bytes) {
    const struct statvfs now = usage(folder());
    const std::uint64_t used = (now.f_blocks - now.f_bfree) * now.f_frsize;
    remount("nr_inodes=100000,size=" + std::to_string(used + bytes));
}

void SmallDisk::leaveFiles(std::uint64_t files) {
    const struct statvfs now = usage(folder());
    remount("size=64m,nr_inodes=" + std::to_string(now.f_files - now.f_ffree + files));
}

void SmallDisk::leaveEverything() {
    remount(kRoomy);
}

void SmallDisk::remount(const std::string& limits) const {
    if (mount("kvn-small-disk", folder().c_str(), "tmpfs", MS_REMOUNT, limits.c_str()) != 0)
        throw std::system_error(errno, std::generic_category(), "remount with " + limits);
}

}  // namespace vorthmere::end_to_end
