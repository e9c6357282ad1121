#include "tests/support/temporary_folder.h"

#include <fstream>
#include <random>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

namespace vorthmere::update::testing {
namespace {

namespace fs = std::filesystem;

// MinGW's library takes links for plain folders and would remove what they lead to, so the attribute decides there.
bool isLink(const fs::path& path) {
#ifdef _WIN32
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
#else
    std::error_code ignored;
    return fs::is_symlink(fs::symlink_status(path, ignored));
#endif
}

void removeWithoutFollowingLinks(const fs::path& path) {
    std::error_code ignored;
    if (!isLink(path)) {
        fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
        if (fs::is_directory(path, ignored)) {
            std::vector<fs::path> children;
            for (fs::directory_iterator child(path, ignored), end; !ignored && child != end; child.increment(ignored))
                children.push_back(child->path());
            for (const fs::path& child : children)
                removeWithoutFollowingLinks(child);
        }
    }
    fs::remove(path, ignored);
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        path_ = fs::temp_directory_path() / ("kelvane-test-" + std::to_string(random()));
    } while (!fs::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
    removeWithoutFollowingLinks(path_);
}

void writeFile(const fs::path& file, std::string_view content) {
    fs::create_directories(file.parent_path());
    std::ofstream stream;
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.open(file, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
}

std::string readFile(const fs::path& file) {
    std::ifstream stream;
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.open(file, std::ios::binary | std::ios::ate);
    std::string content(static_cast<std::size_t>(stream.tellg()), '\0');
    stream.seekg(0);
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

}  // namespace vorthmere::update::testing
