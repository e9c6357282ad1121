#include "update/managed_file_list.h"

#include <algorithm>
#include <set>

#include "fuzz_target.h"
#include "update/managed_path.h"

namespace vorthmere::update::fuzz {
namespace {

void requireSame(const std::vector<std::string>& paths, const std::string& text, std::string_view property) {
    std::vector<std::string> again;
    std::string error;
    require(parseManagedFileList(text, again, error) && again == paths, property, text);
}

void requireRefused(const std::vector<std::string>& paths, std::string_view sentence) {
    const std::string text = joinLines(paths, "\n");
    std::vector<std::string> ignored;
    std::string error;
    require(!parseManagedFileList(text, ignored, error) && error == sentence, sentence, text);
}

}  // namespace

bool tryInput(std::string_view input) {
    const std::string text = expandRepeatedLines(input);
    std::vector<std::string> paths = {"of an earlier use"};
    std::string error = "of an earlier use";
    const bool accepted = parseManagedFileList(text, paths, error);
    requireSentenceOnlyOnFailure(accepted, error, input);
    if (!accepted) return false;

    require(text.size() <= 131072, "an accepted list has at most 131072 bytes", input);
    require(paths.size() >= 3 && paths.size() <= 1024, "an accepted list names 3 to 1024 files", input);
    require(std::set(paths.begin(), paths.end()).size() == paths.size(), "no file is named twice", input);
    for (const std::string& path : paths)
        require(isSafeRelativePath(path, false), "every path of an accepted list is safe", input);

    std::vector<std::string> lines = splitLines(text);
    std::erase(lines, "");
    require(lines == paths, "the paths are the lines that are not blank, in their order", input);
    // A very long list may become too long when it is written in another way.
    if (text.size() > 100000) return true;
    requireSame(paths, joinLines(paths, "\n"), "an accepted list written again reads the same");
    requireSame(paths, joinLines(paths, "\r\n\r\n"), "the kind of line end and blank lines do not matter");

    std::vector<std::string> changed = paths;
    changed.insert(changed.begin(), paths.back());
    requireRefused(changed, "Managed-file list contains an unsafe or duplicate path.");
    for (const char* required : {"KVN_MANAGED_FILES.txt", "Vorthmere.exe", "KVNUpdater.exe"}) {
        changed = paths;
        require(std::erase(changed, required) == 1, "the files that every release has are there", input);
        requireRefused(changed, "Managed-file list is missing a required runtime.");
    }
    return true;
}

}  // namespace vorthmere::update::fuzz
