#include "publisher/channel_listing.h"

#include <algorithm>
#include <system_error>

#include "publisher/channel.h"
#include "publisher/entry_facts.h"
#include "publisher/folder_names.h"
#include "publisher/in_quotes.h"
#include "publisher/release_texts.h"
#include "update/decimal.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

/// The number in the name of a package or an inventory; 0 for any other name.
std::uint32_t numberIn(const std::string& name) {
    constexpr std::string_view digits = "0123456789";
    const std::size_t first = std::min(name.find_first_of(digits), name.size());
    const std::size_t end = std::min(name.find_first_not_of(digits, first), name.size());
    std::uint32_t release = 0;
    return update::parseDecimal(std::string_view(name).substr(first, end - first), release) ? release : 0;
}

void takeName(const std::string& name, ChannelListing& listing) {
    if (update::isObjectName(name)) {
        listing.objects.push_back(name);
        return;
    }
    const std::uint32_t release = numberIn(name);
    if (release == 0) return;
    if (name == packageName(release)) listing.releases[release].hasPackage = true;
    if (name == inventoryName(release)) listing.releases[release].hasInventory = true;
}

}  // namespace

bool listChannel(const fs::path& channel, ChannelListing& listing, std::string& error) {
    listing = {};
    std::error_code failure;
    if (factsOfTarget(channel, failure).kind == EntryKind::missing && !failure) return true;
    for (const fs::path& name : namesIn(channel, failure))
        takeName(name.string(), listing);
    if (failure) error = "The channel cannot be listed: " + failure.message() + ".";
    std::sort(listing.objects.begin(), listing.objects.end());
    return !failure;
}

std::optional<std::uint32_t> highestRelease(const ChannelListing& listing) {
    if (listing.releases.empty()) return {};
    return listing.releases.rbegin()->first;
}

std::vector<std::string> readReleasesBelow(std::uint32_t release, const fs::path& channel,
                                           const ChannelListing& listing, std::vector<ListedRelease>& releases) {
    std::vector<std::string> faults;
    for (const auto& [number, files] : listing.releases) {
        if (number >= release || !files.hasInventory) continue;
        update::Manifest header;
        ListedRelease older;
        std::string fault;
        if (readInventoryAlone(channel / inventoryName(number), header, older.entries, fault)) {
            older.release = number;
            releases.push_back(std::move(older));
        } else {
            faults.push_back("The inventory of release " + std::to_string(number) + " cannot be read: " + fault);
        }
    }
    return faults;
}

}  // namespace vorthmere::publish
