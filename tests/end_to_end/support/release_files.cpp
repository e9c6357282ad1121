#include "tests/end_to_end/support/release_files.h"

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/release_texts.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {

ReleaseFiles withReleaseMetadata(ReleaseFiles files, std::uint32_t release) {
    ManifestText manifest;
    manifest.release = std::to_string(release);
    files[std::string(update::kReleaseMarkerName)] = {renderReleaseMarker(manifest)};
    std::string& list = files[std::string(update::kManagedFileListName)].content;
    list = renderManagedFileList(files);
    return files;
}

void layOut(const ReleaseFiles& files, const std::filesystem::path& folder) {
    for (const auto& [path, file] : files) {
        writeFile(folder / path, file.content);
        if (file.readOnly) setReadOnly(folder / path);
    }
}

}  // namespace vorthmere::end_to_end
