#include "publisher/release_texts.h"

#include "update/metadata_keys.h"

namespace vorthmere::publish {

std::string packageName(std::uint32_t release) {
    return std::string(update::kPackageNamePrefix) + "release-" + std::to_string(release) +
           std::string(update::kPackageNameSuffix);
}

std::string inventoryName(std::uint32_t release) {
    return update::inventoryAddress(packageName(release));
}

std::string packageNameOf(const update::Manifest& manifest) {
    return manifest.url.substr(manifest.url.rfind('/') + 1);
}

std::string inventoryNameOf(const update::Manifest& manifest) {
    return update::inventoryAddress(packageNameOf(manifest));
}

std::string releaseMarkerText(const update::Manifest& manifest) {
    using namespace update;
    return fieldLine(key::release, std::to_string(manifest.release)) + '\n' +
           fieldLine(key::version, manifest.version) + '\n' +
           fieldLine(key::protocol, std::to_string(manifest.protocol)) + '\n';
}

std::string listingText(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text.append(name).append("\r\n");
    return text;
}

}  // namespace vorthmere::publish
