#include "tests/support/file_tree.h"

#include "tests/support/temporary_folder.h"
#include "tests/support/windows_folder.h"

namespace vorthmere::update::testing {
namespace {

namespace fs = std::filesystem;

void readInto(FileTree& tree, const fs::path& folder, const std::string& prefix, const std::string& leftOut) {
    for (const WIN32_FIND_DATAW& entry : entriesIn(folder)) {
        const fs::path path = folder / entry.cFileName;
        const std::string name = path.filename().string();
        if (prefix.empty() && name == leftOut) continue;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) continue;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            readInto(tree, path, prefix + name + "/", leftOut);
        else
            tree[prefix + name] = readFile(path);
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
    for (const WIN32_FIND_DATAW& entry : entriesIn(folder))
        names.insert(fs::path(entry.cFileName).string());
    return names;
}

}  // namespace vorthmere::update::testing
