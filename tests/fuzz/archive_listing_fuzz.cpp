#include <algorithm>

#include "fuzz_target.h"
#include "update/archive_listing.h"
#include "update/managed_path.h"

namespace vorthmere::update::fuzz {
namespace {

bool accepts(const std::string& listing) {
    std::wstring error;
    return checkArchiveListing(listing, error);
}

}  // namespace

bool tryInput(std::string_view input) {
    const std::string listing = expandRepeatedLines(input);
    std::wstring error;
    const bool accepted = checkArchiveListing(listing, error);
    requireSentenceOnlyOnFailure(accepted, std::string(error.begin(), error.end()), input);

    std::vector<std::string> entries = splitLines(listing);
    std::erase(entries, "");
    const bool allSafe = std::all_of(entries.begin(), entries.end(),
                                     [](const std::string& entry) { return isSafeRelativePath(entry, true); });
    require(accepted == (allSafe && !entries.empty() && entries.size() <= 2048),
            "accepted are exactly the listings of 1 to 2048 safe entries", input);
    require(entries.empty() == (error == L"The update archive is empty."), "an empty listing is told apart", input);
    if (!accepted) return false;

    require(accepts(joinLines(entries, "\r\n\r\n")), "line ends and blank lines do not matter", input);
    std::reverse(entries.begin(), entries.end());
    require(accepts(joinLines(entries, "\n")), "the order of the entries does not matter", input);
    for (const char* hostile : {"../x", "/x", "C:/x", "x//", "a\\..\\x", "aux.txt"})
        require(!accepts(joinLines(entries, "\n") + hostile), "one hostile entry spoils the listing", input);
    return true;
}

}  // namespace vorthmere::update::fuzz
