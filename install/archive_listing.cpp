#include "install/package_inspection.h"
#include "update/managed_path.h"

namespace vorthmere::update {

bool checkArchiveListing(std::string_view listing, std::wstring& error) {
    std::size_t entries = 0;
    while (!listing.empty()) {
        const std::string_view line = nextLine(listing);
        if (line.empty()) continue;
        if (!isSafeRelativePath(line, true) || entries == kMaxArchiveEntries) {
            error = L"The update archive contains an unsafe path.";
            return false;
        }
        ++entries;
    }
    if (entries == 0) {
        error = L"The update archive is empty.";
        return false;
    }
    return true;
}

}  // namespace vorthmere::update
