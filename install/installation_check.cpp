#include "install/installation_check.h"

#include <algorithm>
#include <string_view>
#include <system_error>

#include "files/canonical_path.h"
#include "files/file_status.h"
#include "files/reparse_point.h"
#include "update/failing.h"
#include "update/release_channel.h"

namespace vorthmere::update {
namespace {

bool isInstallation(const std::filesystem::path& folder) {
    if (fileTypeOrThrow(folder, "status") != FileType::directory) return false;
    if (isReparsePoint(folder)) return false;
    return std::all_of(kRequiredFiles.begin(), kRequiredFiles.end(), [&folder](std::string_view name) {
        return fileTypeOrThrow(folder / name, "status") == FileType::regular;
    });
}

}  // namespace

bool checkInstallation(std::filesystem::path& installationFolder, std::wstring& error) {
    std::error_code failure;
    installationFolder = weaklyCanonicalPath(absolutePath(installationFolder), failure);
    if (!failure && !installationFolder.empty() && isInstallation(installationFolder)) return true;
    return fail(error, L"This is not a writable Kelvane portable installation.");
}

}  // namespace vorthmere::update
