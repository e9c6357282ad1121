#include "tests/support/temporary_folder.h"

#include <fstream>
#include <random>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include "tests/support/windows_folder.h"
#endif

namespace vorthmere::update::testing {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32

// The standard library knows neither links nor long paths here.
fs::path reachable(const fs::path& path) {
    return extendedPath(path);
}

void createFolders(const fs::path& folder) {
    if (!CreateDirectoryW(reachable(folder).c_str(), nullptr) && GetLastError() == ERROR_PATH_NOT_FOUND) {
        createFolders(folder.parent_path());
        CreateDirectoryW(reachable(folder).c_str(), nullptr);
    }
}

void removeWithoutFollowingLinks(const fs::path& folder) {
    for (const WIN32_FIND_DATAW& entry : entriesIn(folder)) {
        const fs::path path = extendedPath(folder) / entry.cFileName;
        const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool isLink = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        if (isFolder && !isLink) {
            removeWithoutFollowingLinks(path);
            continue;
        }
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (!isFolder) DeleteFileW(path.c_str());
        // Windows removes a link to a folder itself; Wine would remove an empty target instead.
        if (isFolder) RemoveDirectoryW(path.c_str());
    }
    SetFileAttributesW(reachable(folder).c_str(), FILE_ATTRIBUTE_NORMAL);
    RemoveDirectoryW(reachable(folder).c_str());
}

#else

fs::path reachable(const fs::path& path) {
    return path;
}

void createFolders(const fs::path& folder) {
    fs::create_directories(folder);
}

void removeWithoutFollowingLinks(const fs::path& path) {
    std::error_code ignored;
    if (!fs::is_symlink(fs::symlink_status(path, ignored))) {
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

#endif

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
    createFolders(file.parent_path());
    std::ofstream stream;
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.open(reachable(file), std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
}

std::string readFile(const fs::path& file) {
    std::ifstream stream;
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.open(reachable(file), std::ios::binary | std::ios::ate);
    std::string content(static_cast<std::size_t>(stream.tellg()), '\0');
    stream.seekg(0);
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

}  // namespace vorthmere::update::testing
