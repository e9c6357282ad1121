#include "update/release_channel.h"

namespace vorthmere::update {

constexpr std::string_view kDownloadBaseUrl = KVN_DOWNLOAD_BASE_URL;

static_assert(kDownloadBaseUrl.starts_with("https://"));
static_assert(kDownloadBaseUrl.ends_with("/downloads/"));

namespace {

std::string join(std::string_view a, std::string_view b, std::string_view c = {}) {
    std::string text(a);
    return text.append(b).append(c);
}

}  // namespace

std::string objectName(std::string_view sha256) {
    return join(kObjectNamePrefix, sha256, kObjectNameSuffix);
}

std::string channelAddress(std::string_view name) {
    return join(kDownloadBaseUrl, name);
}

std::string inventoryAddress(std::string_view packageAddress) {
    return join(packageAddress, kInventorySuffix);
}

}  // namespace vorthmere::update
