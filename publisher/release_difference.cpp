#include "publisher/release_difference.h"

#include <map>
#include <set>

#include "update/ascii.h"

namespace vorthmere::publish {

ReleaseDifference compareReleases(const std::vector<update::InventoryEntry>& installed,
                                  const std::vector<update::InventoryEntry>& wanted) {
    std::map<std::string, const update::InventoryEntry*> installedByKey;
    for (const update::InventoryEntry& entry : installed)
        installedByKey.emplace(update::toAsciiLower(entry.path), &entry);

    ReleaseDifference difference;
    std::set<std::string> wantedKeys;
    for (const update::InventoryEntry& entry : wanted) {
        std::string key = update::toAsciiLower(entry.path);
        const auto found = installedByKey.find(key);
        wantedKeys.insert(std::move(key));
        if (found != installedByKey.end() && found->second->size == entry.size &&
            found->second->sha256 == entry.sha256) {
            difference.bytesReused += entry.size;
            difference.reused.push_back(entry);
        } else {
            difference.bytesToFetch += entry.size;
            difference.fetched.push_back(entry);
        }
    }
    for (const update::InventoryEntry& entry : installed)
        if (!wantedKeys.contains(update::toAsciiLower(entry.path))) difference.removed.push_back(entry.path);
    return difference;
}

}  // namespace vorthmere::publish
