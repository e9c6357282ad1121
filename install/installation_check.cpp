#include "install/installation_check.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "platform/canonical_path.h"
#include "platform/file_status.h"
#include "platform/reparse_point.h"
#include "update/release_channel.h"

namespace vorthmere::update {
namespace {

constexpr std::array<std::string_view, 3> kMarkerNames = {kGameExecutableName, kUpdaterExecutableName,
                                                          kManagedFileListName};

bool isInstallation(const std::filesystem::path& folder) {
    if (fileTypeOrThrow(folder, "status") != FileType::directory) return false;
    if (isReparsePoint(folder)) return false;
    return std::all_of(kMarkerNames.begin(), kMarkerNames.end(), [&folder](std::string_view name) {
        return fileTypeOrThrow(folder / name, "status") == FileType::regular;
    });
}

}  // namespace

bool checkInstallation(std::filesystem::path& installationFolder, std::wstring& error) {
    std::error_code failure;
    installationFolder = weaklyCanonicalPath(absolutePath(installationFolder), failure);
    if (!failure && !installationFolder.empty() && isInstallation(installationFolder)) return true;
    error = L"This is not a writable Kelvane portable installation.";
    return false;
}

}  // namespace vorthmere::update
