#include "tests/end_to_end/support/tree_snapshot.h"

#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "tests/end_to_end/support/digest.h"
#include "tests/end_to_end/support/files.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

TreeEntry describe(const fs::directory_entry& entry) {
    TreeEntry described;
    const fs::file_status status = entry.symlink_status();
    if (fs::is_symlink(status)) {
        described.kind = TreeEntry::Kind::link;
        described.content = fs::read_symlink(entry.path()).string();
    } else if (fs::is_directory(status)) {
        described.kind = TreeEntry::Kind::folder;
    } else if (fs::is_regular_file(status)) {
        struct stat details {};
        if (stat(entry.path().c_str(), &details) != 0)
            throw std::system_error(errno, std::generic_category(), entry.path().string());
        const std::string bytes = readFile(entry.path());
        described.kind = TreeEntry::Kind::file;
        described.content = sha256TextOf(bytes);
        described.bytes = bytes.size();
        described.readOnly = isReadOnly(entry.path());
        described.changed = details.st_mtim.tv_sec * std::int64_t{1'000'000'000} + details.st_mtim.tv_nsec;
    }
    return described;
}

std::string text(const TreeEntry& entry) {
    switch (entry.kind) {
        case TreeEntry::Kind::folder:
            return "folder";
        case TreeEntry::Kind::link:
            return "link to " + entry.content;
        case TreeEntry::Kind::other:
            return "special file";
        case TreeEntry::Kind::file:
            break;
    }
    return "file of " + std::to_string(entry.bytes) + " bytes, " + entry.content.substr(0, 12) +
           (entry.readOnly ? ", read-only" : "") + ", changed at " + std::to_string(entry.changed);
}

}  // namespace

TreeSnapshot takeSnapshot(const fs::path& root, const std::function<bool(const std::string&)>& wanted) {
    TreeSnapshot snapshot;
    for (auto walk = fs::recursive_directory_iterator(root); walk != fs::recursive_directory_iterator(); ++walk) {
        const std::string path = walk->path().lexically_relative(root).generic_string();
        if (!wanted || wanted(path))
            snapshot.emplace(path, describe(*walk));
        else
            walk.disable_recursion_pending();
    }
    return snapshot;
}

TreeSnapshot filesOnly(const TreeSnapshot& snapshot) {
    TreeSnapshot files = snapshot;
    std::erase_if(files, [](const auto& entry) { return entry.second.kind == TreeEntry::Kind::folder; });
    return files;
}

std::string describeDifferences(const TreeSnapshot& before, const TreeSnapshot& after) {
    std::string lines;
    for (const auto& [path, entry] : before) {
        const auto now = after.find(path);
        if (now == after.end())
            lines += "  missing: " + path + " (" + text(entry) + ")\n";
        else if (now->second != entry)
            lines += "  changed: " + path + " (" + text(entry) + " -> " + text(now->second) + ")\n";
    }
    for (const auto& [path, entry] : after)
        if (!before.contains(path)) lines += "  new: " + path + " (" + text(entry) + ")\n";
    return lines;
}

}  // namespace vorthmere::end_to_end
