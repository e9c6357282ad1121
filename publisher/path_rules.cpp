#include "publisher/path_rules.h"

#include <algorithm>
#include <map>

#include "publisher/in_quotes.h"
#include "update/ascii.h"
#include "update/limits.h"
#include "update/managed_path.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

std::string brokenComponentRule(std::string_view component) {
    if (!std::all_of(component.begin(), component.end(), update::isManagedNameByte))
        return "only ASCII letters, digits, spaces and the characters \"-\", \".\" and \"_\" may be in a name";
    if (component.ends_with('.') || component.ends_with(' '))
        return "no name may end in a full stop or a space, which Windows drops";
    if (update::toAsciiLower(component) == update::kWorkFolderName)
        return inQuotes(update::kWorkFolderName) + " is the updater's own work folder";
    return inQuotes(component) + " names a Windows device";
}

}  // namespace

std::string brokenPathRule(std::string_view path) {
    if (update::isSafeRelativePath(path, false)) return {};
    if (path.size() > update::kMaxManagedPathBytes)
        return "a path may have " + std::to_string(update::kMaxManagedPathBytes) + " bytes, this one has " +
               std::to_string(path.size());
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        const std::string_view component = path.substr(0, slash);
        if (!update::isSafeRelativePath(component, false)) return brokenComponentRule(component);
        path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
    }
    return "the path is not relative to the game folder";
}

std::vector<std::string> clashesOnWindows(const std::vector<std::string>& paths) {
    std::map<std::string, std::string> fileNames;
    std::map<std::string, std::string> folderNames;
    std::vector<std::string> clashes;
    for (const std::string& path : paths) {
        const auto [known, isNew] = fileNames.emplace(update::toAsciiLower(path), path);
        if (!isNew)
            clashes.push_back(inQuotes(path) + " and " + inQuotes(known->second) +
                              " are one and the same file on Windows.");
        for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
            const std::string folder = path.substr(0, slash);
            const auto [first, isNewFolder] = folderNames.emplace(update::toAsciiLower(folder), folder);
            if (isNewFolder || first->second == folder) continue;
            std::string clash = "The folders " + inQuotes(folder) + " and " + inQuotes(first->second) +
                                " are one and the same on Windows.";
            if (clashes.empty() || clashes.back() != clash) clashes.push_back(std::move(clash));
        }
    }
    for (const auto& [key, folder] : folderNames) {
        const auto file = fileNames.find(key);
        if (file != fileNames.end())
            clashes.push_back(inQuotes(file->second) + " is a file and " + inQuotes(folder) +
                              " a folder; Windows allows only one of them.");
    }
    return clashes;
}

}  // namespace vorthmere::publish
