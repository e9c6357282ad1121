#include "publisher/release_folders.h"

#include <system_error>

#include "publisher/entry_facts.h"
#include "publisher/in_quotes.h"
#include "publisher/resolved_path.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

bool isInside(const fs::path& inner, const fs::path& outer) {
    const fs::path relative = inner.lexically_relative(outer);
    return !relative.empty() && *relative.begin() != "..";
}

bool judgeChannel(const fs::path& channel, std::string& error) {
    std::error_code failure;
    const EntryKind target = factsOfTarget(channel, failure).kind;
    if (target == EntryKind::folder) return true;
    if (failure)
        error = "The channel " + inQuotes(channel) + " cannot be looked at: " + failure.message() + ".";
    else if (target != EntryKind::missing)
        error = "The channel " + inQuotes(channel) + " is not a folder.";
    else if (factsOf(channel, failure).kind == EntryKind::link)
        error = "The channel " + inQuotes(channel) +
                " is a link that leads nowhere; mount what it leads to, or remove the link.";
    return error.empty();
}

}  // namespace

bool judgeFolders(const fs::path& gameFolder, const fs::path& channel, std::string& error) {
    std::error_code failure;
    if (factsOfTarget(gameFolder, failure).kind != EntryKind::folder) {
        error = "The game folder " + inQuotes(gameFolder) + " is not a folder.";
        return false;
    }
    if (!channel.empty() && !judgeChannel(channel, error)) return false;
    const fs::path game = resolvedPath(gameFolder, failure);
    fs::path place;
    if (channel.empty())
        failure = std::make_error_code(std::errc::invalid_argument);
    else if (!failure)
        place = resolvedPath(channel, failure);
    if (failure) {
        error = "Where the channel " + inQuotes(channel) + " lies cannot be found out: " + failure.message() + ".";
        return false;
    }
    if (!isInside(game, place) && !isInside(place, game)) return true;
    error = "The game folder and the channel must lie apart, neither inside the other.";
    return false;
}

}  // namespace vorthmere::publish
