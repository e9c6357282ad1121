#include "publisher/previous_release.h"

#include "publisher/channel.h"
#include "publisher/release_texts.h"

namespace vorthmere::publish {
namespace {

std::optional<std::uint32_t> newestBelow(std::uint32_t release, const ChannelListing& listing) {
    const auto next = listing.releases.lower_bound(release);
    if (next == listing.releases.begin()) return {};
    return std::prev(next)->first;
}

}  // namespace

PreviousRelease findPreviousRelease(std::uint32_t release, const std::optional<update::Manifest>& published,
                                    const std::filesystem::path& channel, const ChannelListing& listing) {
    PreviousRelease previous;
    std::string fault;
    bool isReadable = false;
    if (published && published->release < release) {
        previous.release = published->release;
        previous.packageName = packageNameOf(*published);
        previous.packageSha256 = published->sha256;
        isReadable = readInventory(channel / inventoryNameOf(*published), *published, previous.entries, fault);
    } else {
        previous.release = newestBelow(release, listing);
        if (!previous.release) return previous;
        update::Manifest header;
        previous.packageName = packageName(*previous.release);
        isReadable = readInventoryAlone(channel / inventoryName(*previous.release), header, previous.entries, fault);
        previous.packageSha256 = header.sha256;
    }
    if (!isReadable)
        previous.fault = "The inventory of release " + std::to_string(*previous.release) + " cannot be read: " + fault;
    return previous;
}

}  // namespace vorthmere::publish
