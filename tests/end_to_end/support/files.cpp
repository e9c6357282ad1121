#include "tests/end_to_end/support/files.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

constexpr fs::perms kWriteBits = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

}  // namespace

std::string readFile(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + file.string());
    std::ostringstream content;
    if (fs::file_size(file) != 0) content << stream.rdbuf();
    return std::move(content).str();
}

void writeFile(const fs::path& file, std::string_view content) {
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + file.string());
}

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
