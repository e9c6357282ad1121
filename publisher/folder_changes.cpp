#include "publisher/folder_changes.h"

#include <map>

#include "publisher/in_quotes.h"
#include "update/ascii.h"

namespace vorthmere::publish {
namespace {

/// Files by their names in lower case.
using Files = std::map<std::string, const std::string*>;

Files filesOf(const ListedRelease& release) {
    Files files;
    for (const update::InventoryEntry& entry : release.entries)
        files.emplace(update::toAsciiLower(entry.path), &entry.path);
    return files;
}

/// A clause about the first path of `holder` that runs through a file of `files`.
std::string firstFileThatIsAFolder(const Files& files, const ListedRelease& fileRelease, const ListedRelease& holder) {
    for (const update::InventoryEntry& entry : holder.entries) {
        const std::string key = update::toAsciiLower(entry.path);
        for (std::size_t slash = key.find('/'); slash != std::string::npos; slash = key.find('/', slash + 1)) {
            const auto file = files.find(key.substr(0, slash));
            if (file == files.end()) continue;
            return inQuotes(*file->second) + " is a file in release " + std::to_string(fileRelease.release) +
                   " and the folder of " + inQuotes(entry.path) + " in release " + std::to_string(holder.release);
        }
    }
    return {};
}

}  // namespace

std::vector<std::string> folderChanges(const std::vector<ListedRelease>& older, const ListedRelease& newer) {
    const Files newFiles = filesOf(newer);
    std::vector<std::string> sentences;
    for (const ListedRelease& release : older) {
        if (const std::string clause = firstFileThatIsAFolder(newFiles, newer, release); !clause.empty())
            sentences.push_back(clause + ": players who have release " + std::to_string(release.release) +
                                " cannot install this one.");
        else if (const std::string reverse = firstFileThatIsAFolder(filesOf(release), release, newer); !reverse.empty())
            sentences.push_back(reverse + ": players who have release " + std::to_string(release.release) +
                                " do not get it back when this one's game does not start.");
    }
    return sentences;
}

}  // namespace vorthmere::publish
