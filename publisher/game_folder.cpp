#include "publisher/game_folder.h"

#include <algorithm>
#include <set>

#include "publisher/entry_facts.h"
#include "publisher/folder_walk.h"
#include "publisher/ignore_rules.h"
#include "publisher/in_quotes.h"
#include "publisher/path_rules.h"
#include "publisher/sentences.h"
#include "publisher/unwanted_files.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

bool isGenerated(std::string_view path) {
    return path == update::kManagedFileListName || path == update::kReleaseMarkerName;
}

/// Sorts the content of a game folder into published, left out and refused.
class GameListing {
public:
    GameListing(const GameFolderPatterns& patterns, GameFolder& found) : found_(found) {
        for (const std::string& pattern : patterns.exclude)
            given_.push_back(pattern);
        for (const std::string& pattern : patterns.include)
            included_.add(pattern);
    }

    bool readIgnoreFile(const fs::path& folder, std::string& error) {
        const fs::path file = folder / kIgnoreFileName;
        std::error_code failure;
        if (factsOf(file, failure).kind == EntryKind::file) {
            std::string text;
            const ContentSink take = [&text](std::span<const char> bytes) {
                text.append(bytes.begin(), bytes.end());
                return true;
            };
            if (!readFile(file, take, error)) return false;
            excluded_.addLines(text);
        }
        // The last pattern decides, and the command line shall have the last word.
        for (const std::string& pattern : given_)
            excluded_.add(pattern);
        return true;
    }

    /// @return true to enter a folder
    bool take(const WalkedEntry& entry) {
        const bool isFolder = entry.facts.kind == EntryKind::folder;
        if (entry.path == kIgnoreFileName && !isFolder) return false;
        if (excluded_.matches(entry.path, isFolder)) {
            ++found_.excluded;
            return false;
        }
        if (entry.facts.kind == EntryKind::file && isGenerated(entry.path)) return false;
        if (const std::string fault = faultOf(entry, isFolder); !fault.empty()) {
            faults_.push_back(fault);
            return false;
        }
        if (isFolder)
            folders_.insert(entry.path);
        else
            found_.files.push_back({{entry.path, {}, entry.facts.size}, entry.place, {}});
        return isFolder;
    }

    bool finish(std::string& error) {
        for (const ReleaseFile& file : found_.files) {
            const std::string& path = file.entry.path;
            for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1))
                folders_.erase(path.substr(0, slash));
        }
        found_.emptyFolders.assign(folders_.begin(), folders_.end());
        std::sort(found_.files.begin(), found_.files.end(),
                  [](const ReleaseFile& a, const ReleaseFile& b) { return a.entry.path < b.entry.path; });
        error = joinSentences(faults_);
        return faults_.empty();
    }

private:
    [[nodiscard]] std::string faultOf(const WalkedEntry& entry, bool isFolder) const {
        if (entry.facts.kind == EntryKind::link)
            return inQuotes(entry.path) + " is a symbolic link; a release holds nothing but files and folders.";
        if (entry.facts.kind == EntryKind::special)
            return inQuotes(entry.path) + " is a special file; a release holds nothing but files and folders.";
        const std::string unwanted = unwantedKind(entry.path.substr(entry.path.rfind('/') + 1), isFolder);
        if (!unwanted.empty() && !included_.matches(entry.path, isFolder))
            return inQuotes(entry.path) + " is " + unwanted +
                   " and does not belong in a game: leave it out with --exclude, or let it in with --include.";
        const std::string broken = brokenPathRule(entry.path);
        return broken.empty() ? broken : inQuotes(entry.path) + " cannot be in a release: " + broken + ".";
    }

    GameFolder& found_;
    std::vector<std::string> given_;
    IgnoreRules excluded_;
    IgnoreRules included_;
    std::set<std::string> folders_;
    std::vector<std::string> faults_;
};

}  // namespace

bool listGameFolder(const fs::path& folder, const GameFolderPatterns& patterns, GameFolder& found, std::string& error) {
    found = {};
    GameListing listing(patterns, found);
    return listing.readIgnoreFile(folder, error) &&
           walkFolder(
               folder, [&listing](const WalkedEntry& entry) { return listing.take(entry); }, error) &&
           listing.finish(error);
}

}  // namespace vorthmere::publish
