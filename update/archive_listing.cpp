#include "update/archive_listing.h"

#include "update/failing.h"
#include "update/limits.h"
#include "update/managed_path.h"

namespace vorthmere::update {

bool checkArchiveListing(std::string_view listing, std::wstring& error) {
    std::size_t entries = 0;
    while (!listing.empty()) {
        const std::string_view line = nextLine(listing);
        if (line.empty()) continue;
        if (!isSafeRelativePath(line, true) || entries == kMaxArchiveEntries)
            return fail(error, L"The update archive contains an unsafe path.");
        ++entries;
    }
    return entries > 0 || fail(error, L"The update archive is empty.");
}

}  // namespace vorthmere::update
