#include "publisher/release_number.h"

#include <algorithm>
#include <limits>

#include "publisher/in_quotes.h"
#include "publisher/release_texts.h"

namespace vorthmere::publish {
namespace {

constexpr std::uint32_t kUsualJump = 1'000'000;
constexpr std::uint32_t kLastUsualNumber = std::numeric_limits<std::uint32_t>::max() - kUsualJump;

std::string nameInChannel(std::uint32_t release, const ChannelListing& listing) {
    return listing.releases.at(release).hasPackage ? packageName(release) : inventoryName(release);
}

/// @param highest release number of the channel; 0 when it has none
bool judgeJump(std::uint32_t release, std::uint32_t highest, std::string& error) {
    if (highest != 0 && release > highest && release - highest > kUsualJump) {
        error = "Release " + std::to_string(release) + " would leave out more than a million numbers after " +
                std::to_string(highest) + ", and numbers never go back: give --allow-jump if it is no mistake.";
    } else if (release > kLastUsualNumber && release != highest) {
        error = "After release " + std::to_string(release) +
                " there are fewer than a million numbers left, and numbers never go back: give --allow-jump if it is "
                "no mistake.";
    }
    return error.empty();
}

}  // namespace

bool judgeReleaseNumber(std::uint32_t release, const std::optional<update::Manifest>& published,
                        const ChannelListing& listing, bool allowJump, std::string& error) {
    const std::uint32_t offered = published ? published->release : 0;
    const std::uint32_t named = highestRelease(listing).value_or(0);
    if (release < offered) {
        error = "Release " + std::to_string(offered) +
                " is published, and updaters never go back: --release must be greater than that.";
        return false;
    }
    if (release < named) {
        error = "The channel holds " + inQuotes(nameInChannel(named, listing)) + ", so release " +
                std::to_string(named) +
                " was begun and perhaps published, and updaters never go back: --release must "
                "be greater than that.";
        return false;
    }
    return allowJump || judgeJump(release, std::max(offered, named), error);
}

}  // namespace vorthmere::publish
