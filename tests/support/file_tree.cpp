#include "tests/support/file_tree.h"

#include <windows.h>

#include "tests/support/temporary_folder.h"

namespace vorthmere::update::testing {
namespace {

namespace fs = std::filesystem;

bool isLink(const fs::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

void readInto(FileTree& tree, const fs::path& folder, const std::string& prefix, const std::string& leftOut) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (prefix.empty() && name == leftOut) continue;
        if (isLink(entry.path())) continue;
        if (entry.is_directory())
            readInto(tree, entry.path(), prefix + name + "/", leftOut);
        else
            tree[prefix + name] = readFile(entry.path());
    }
}

}  // namespace

FileTree readTree(const fs::path& folder, const std::string& leftOut) {
    FileTree tree;
    readInto(tree, folder, "", leftOut);
    return tree;
}

void writeTree(const fs::path& folder, const FileTree& tree) {
    fs::create_directories(folder);
    for (const auto& [path, content] : tree) {
        if (path.ends_with('/'))
            fs::create_directories(folder / path);
        else
            writeFile(folder / path, content);
    }
}

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

}  // namespace vorthmere::update::testing
