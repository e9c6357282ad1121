#include "tests/end_to_end/support/files.h"

#include <algorithm>

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

constexpr fs::perms kWriteBits = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

}  // namespace

void setReadOnly(const fs::path& file, bool readOnly) {
    if (readOnly)
        fs::permissions(file, kWriteBits, fs::perm_options::remove);
    else
        fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
}

bool isReadOnly(const fs::path& file) {
    return (fs::symlink_status(file).permissions() & kWriteBits) == fs::perms::none;
}

std::string windowsPath(const fs::path& file) {
    std::string name = "Z:" + fs::absolute(file).string();
    std::replace(name.begin(), name.end(), '/', '\\');
    return name;
}

}  // namespace vorthmere::end_to_end
