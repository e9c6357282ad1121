#include "tests/end_to_end/support/release_texts.h"
#include "tests/end_to_end/support/digest.h"

#include <algorithm>

#include "update/release_channel.h"

namespace vorthmere::end_to_end {

ManifestText manifestOf(const std::string& packageBytes, std::uint32_t release) {
    ManifestText manifest;
    manifest.release = std::to_string(release);
    manifest.size = std::to_string(packageBytes.size());
    manifest.sha256 = sha256TextOf(packageBytes);
    manifest.url = std::string(update::kDownloadBaseUrl) + "KVN-release-" + manifest.release + ".zip";
    return manifest;
}

std::string renderManifest(const ManifestText& manifest) {
    return "KVN-UPDATE/1\nrelease=" + manifest.release + "\nversion=" + manifest.version +
           "\nprotocol=" + manifest.protocol + "\nmandatory=" + manifest.mandatory + "\nsize=" + manifest.size +
           "\nsha256=" + manifest.sha256 + "\nurl=" + manifest.url + "\nnotes=" + manifest.notes + "\n";
}

std::string renderInventory(const ManifestText& manifest, const ReleaseFiles& files) {
    std::string text = "KVN-FILES/1\narchive=" + manifest.sha256 + "\nrelease=" + manifest.release +
                       "\nprotocol=" + manifest.protocol + "\nversion=" + manifest.version + "\n";
    for (const auto& [path, file] : files)
        text += path + "\t" + std::to_string(file.content.size()) + "\t" + sha256TextOf(file.content) + "\n";
    return text;
}

std::string objectName(const std::string& content) {
    return update::objectName(sha256TextOf(content));
}

std::string renderReleaseMarker(const ManifestText& manifest) {
    return "release=" + manifest.release + "\nversion=" + manifest.version + "\nprotocol=" + manifest.protocol + "\n";
}

std::vector<std::string> managedFileOrder(const ReleaseFiles& files) {
    std::vector<std::string> paths;
    for (const auto& [path, file] : files)
        paths.push_back(path);
    std::stable_partition(paths.begin(), paths.end(), [](const std::string& path) {
        return path != update::kManagedFileListName && path != update::kUpdaterExecutableName &&
               path != update::kGameExecutableName;
    });
    return paths;
}

std::string renderManagedFileList(const ReleaseFiles& files) {
    std::string text;
    for (const std::string& path : managedFileOrder(files))
        text += path + "\n";
    return text;
}

}  // namespace vorthmere::end_to_end
