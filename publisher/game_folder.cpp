#include "publisher/game_folder.h"

#include <algorithm>
#include <set>
#include <system_error>

#include "publisher/in_quotes.h"
#include "publisher/path_rules.h"
#include "publisher/release_texts.h"
#include "update/archive_listing.h"
#include "update/ascii.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

bool isGenerated(std::string_view path) {
    return path == update::kManagedFileListName || path == update::kReleaseMarkerName;
}

bool listEntry(const fs::directory_entry& entry, const fs::path& folder, GameFolder& found,
               std::set<std::string>& folders, std::string& error) {
    const std::string path = entry.path().lexically_relative(folder).generic_string();
    std::error_code failure;
    const fs::file_type type = entry.symlink_status(failure).type();
    const bool isFile = type == fs::file_type::regular;
    if (isFile && isGenerated(path)) return true;

    if (type == fs::file_type::symlink) {
        error = inQuotes(path) + " is a symbolic link; a release holds nothing but files and folders.";
    } else if (!isFile && type != fs::file_type::directory) {
        error = inQuotes(path) + " is a special file; a release holds nothing but files and folders.";
    } else if (const std::string broken = brokenPathRule(path); !broken.empty()) {
        error = inQuotes(path) + " cannot be in a release: " + broken + ".";
    }
    if (!error.empty()) return false;

    if (!isFile) {
        folders.insert(path);
        return true;
    }
    const std::uintmax_t size = entry.file_size(failure);
    if (failure) {
        error = "The size of " + inQuotes(path) + " cannot be found out: " + failure.message() + ".";
        return false;
    }
    found.files.push_back({{path, {}, size}, entry.path(), {}});
    return true;
}

/// Calls `visit` with every folder above `path`, the outermost first.
template <typename Visit>
void forEachFolderOf(const std::string& path, Visit visit) {
    for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1))
        visit(path.substr(0, slash));
}

std::vector<std::string> pathsOf(const std::vector<ReleaseFile>& files) {
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const ReleaseFile& file : files)
        paths.push_back(file.entry.path);
    return paths;
}

bool namesAreDistinctOnWindows(const std::vector<ReleaseFile>& files, std::string& error) {
    const std::string clash = clashOnWindows(pathsOf(files));
    if (!clash.empty()) error = clash;
    return clash.empty();
}

bool holdsRequiredFiles(const std::vector<ReleaseFile>& files, std::string& error) {
    for (const std::string_view required : {update::kGameExecutableName, update::kUpdaterExecutableName}) {
        const bool found = std::any_of(files.begin(), files.end(),
                                       [required](const ReleaseFile& file) { return file.entry.path == required; });
        if (found) continue;
        error = inQuotes(required) + " is missing at the top of the game folder, spelled exactly so.";
        return false;
    }
    return true;
}

bool staysWithinLimits(const std::vector<ReleaseFile>& files, std::string& error) {
    if (files.size() > update::kMaxManagedFiles) {
        error = "The release would hold " + std::to_string(files.size()) +
                " files, the two generated ones included; at most " + std::to_string(update::kMaxManagedFiles) +
                " are allowed.";
        return false;
    }
    if (totalBytes(files) > update::kMaxReleaseBytes) {
        error = "The release would hold " + std::to_string(totalBytes(files)) + " bytes; at most " +
                std::to_string(update::kMaxReleaseBytes) + " (2 GiB) are allowed.";
        return false;
    }
    return true;
}

bool listsStayWithinLimits(const std::vector<ReleaseFile>& files, std::string& error) {
    std::vector<std::string> paths = pathsOf(files);
    const std::string list = managedFileListText(paths);
    if (list.size() > update::kMaxManagedFileListBytes) {
        error = inQuotes(update::kManagedFileListName) + " would have " + std::to_string(list.size()) +
                " bytes; at most " + std::to_string(update::kMaxManagedFileListBytes) +
                " are allowed, so shorten or drop paths.";
        return false;
    }
    std::wstring wideFault;
    const std::string listing = listingText(paths);
    if (listing.size() > update::kMaxArchiveToolOutputBytes || !update::checkArchiveListing(listing, wideFault)) {
        error = "The listing of the package would be refused: it may name " +
                std::to_string(update::kMaxArchiveEntries) + " entries and have " +
                std::to_string(update::kMaxArchiveToolOutputBytes) + " bytes.";
        return false;
    }
    std::string fault;
    if (update::parseManagedFileList(list, paths, fault)) return true;
    error = "The updater would refuse the release: " + fault;
    return false;
}

}  // namespace

bool listGameFolder(const std::filesystem::path& folder, GameFolder& found, std::string& error) {
    found = {};
    std::set<std::string> folders;
    std::error_code failure;
    fs::recursive_directory_iterator walk(folder, failure);
    for (; !failure && walk != fs::recursive_directory_iterator(); walk.increment(failure))
        if (!listEntry(*walk, folder, found, folders, error)) return false;
    if (failure) {
        error = "The game folder " + inQuotes(folder) + " cannot be read: " + failure.message() + ".";
        return false;
    }
    for (const ReleaseFile& file : found.files)
        forEachFolderOf(file.entry.path, [&folders](const std::string& used) { folders.erase(used); });
    found.emptyFolders.assign(folders.begin(), folders.end());
    std::sort(found.files.begin(), found.files.end(),
              [](const ReleaseFile& a, const ReleaseFile& b) { return a.entry.path < b.entry.path; });
    return true;
}

bool judgeReleaseFiles(const std::vector<ReleaseFile>& files, std::string& error) {
    return holdsRequiredFiles(files, error) && namesAreDistinctOnWindows(files, error) &&
           staysWithinLimits(files, error) && listsStayWithinLimits(files, error);
}

}  // namespace vorthmere::publish
