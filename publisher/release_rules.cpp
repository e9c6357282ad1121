#include "publisher/release_rules.h"

#include <algorithm>

#include "publisher/in_quotes.h"
#include "publisher/path_rules.h"
#include "publisher/release_texts.h"
#include "publisher/sentences.h"
#include "update/archive_listing.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/metadata_text.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

std::vector<std::string> pathsOf(const std::vector<ReleaseFile>& files) {
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const ReleaseFile& file : files)
        paths.push_back(file.entry.path);
    return paths;
}

bool namesAreDistinctOnWindows(const std::vector<ReleaseFile>& files, std::string& error) {
    error = joinSentences(clashesOnWindows(pathsOf(files)));
    return error.empty();
}

bool holdsRequiredFiles(const std::vector<ReleaseFile>& files, std::string& error) {
    for (const std::string_view required : update::kRequiredFiles) {
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
    const std::string list = update::managedFileListText(paths);
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

std::vector<ReleaseFile> withGeneratedFiles(std::vector<ReleaseFile> files, const update::Manifest& details) {
    const std::string marker = releaseMarkerText(details);
    files.push_back({{std::string(update::kReleaseMarkerName), {}, marker.size()}, {}, marker});
    std::vector<std::string> paths = pathsOf(files);
    paths.emplace_back(update::kManagedFileListName);
    std::sort(paths.begin(), paths.end());
    const std::string list = update::managedFileListText(paths);
    files.push_back({{std::string(update::kManagedFileListName), {}, list.size()}, {}, list});
    std::sort(files.begin(), files.end(),
              [](const ReleaseFile& a, const ReleaseFile& b) { return a.entry.path < b.entry.path; });
    return files;
}

bool judgeReleaseFiles(const std::vector<ReleaseFile>& files, std::string& error) {
    return holdsRequiredFiles(files, error) && namesAreDistinctOnWindows(files, error) &&
           staysWithinLimits(files, error) && listsStayWithinLimits(files, error);
}

}  // namespace vorthmere::publish
