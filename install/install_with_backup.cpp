#include "install/install_with_backup.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

#include "files/file_changes.h"
#include "files/file_status.h"
#include "files/reparse_point.h"
#include "platform/changes.h"
#include "update/failing.h"

namespace vorthmere::update {
namespace {

using Paths = std::vector<std::string>;

/// One installation: the folders, and what was moved so far.
struct Installation {
    const std::filesystem::path& folder;
    const std::filesystem::path& source;
    const std::filesystem::path& backup;
    Paths backedUp;
    Paths installed;
};

bool moveBetween(const std::filesystem::path& from, const std::filesystem::path& to, std::string_view path) {
    return !moveFile(from / path, to / path);
}

/// Makes the parent folders of files below one folder. Neighbours in a list mostly share theirs, and the platform takes
/// as long to find a folder there as to make it: what was made for the last file is not asked for again.
class ParentFolders {
public:
    explicit ParentFolders(const std::filesystem::path& folder) : folder_(folder) {}

    bool create(std::string_view path) {
        const std::string_view parent = path.substr(0, path.find_last_of('/') + 1);
        if (last_ == parent) return true;
        std::vector<std::filesystem::path> created;
        if (createFolders((folder_ / path).parent_path(), created)) return false;
        last_ = parent;
        return true;
    }

private:
    const std::filesystem::path& folder_;
    std::optional<std::string> last_;
};

bool vacate(Installation& installation, const Paths& pathsToVacate, const Paths& pathsToInstall, std::wstring& error) {
    std::set<std::string_view> affected(pathsToVacate.begin(), pathsToVacate.end());
    affected.insert(pathsToInstall.begin(), pathsToInstall.end());

    ParentFolders backupFolders(installation.backup);
    for (const std::string_view path : affected) {
        if (!isFreeOfReparsePoints(installation.folder, path))
            return fail(error, L"The installation contains a reparse point in a managed path.");
        const std::filesystem::path installed = installation.folder / path;
        if (fileTypeBelowOrThrow(installation.folder, path, "exists") == FileType::notFound) continue;
        if (fileTypeOrThrow(installed, "status") != FileType::regular)
            return fail(error, L"A managed installation path is not a regular file.");
        if (!backupFolders.create(path)) return fail(error, L"Unable to prepare the update backup.");
        if (!moveBetween(installation.folder, installation.backup, path))
            return fail(error, L"Unable to back up the current installation.");
        installation.backedUp.emplace_back(path);
    }
    return true;
}

bool moveIn(Installation& installation, const Paths& pathsToInstall, std::wstring& error) {
    ParentFolders installedFolders(installation.folder);
    for (const std::string& path : pathsToInstall) {
        if (!installedFolders.create(path)) return fail(error, L"Unable to prepare an updated installation folder.");
        if (!moveBetween(installation.source, installation.folder, path))
            return fail(error, L"Unable to install an updated game file.");
        installation.installed.push_back(path);
    }
    return true;
}

// The reverse order removes a file before the one that it replaced returns. Going on behind a failure saves what can be
// saved; the failure that led here is the one worth reporting.
void rollBack(const Installation& installation) {
    for (auto path = installation.installed.rbegin(); path != installation.installed.rend(); ++path)
        static_cast<void>(removeFile(installation.folder / *path));
    ParentFolders installedFolders(installation.folder);
    for (auto path = installation.backedUp.rbegin(); path != installation.backedUp.rend(); ++path) {
        installedFolders.create(*path);
        moveBetween(installation.backup, installation.folder, *path);
    }
}

}  // namespace

bool installWithBackup(const std::filesystem::path& installationFolder, const std::filesystem::path& sourceFolder,
                       const std::filesystem::path& backupFolder, const std::vector<std::string>& pathsToVacate,
                       const std::vector<std::string>& pathsToInstall, std::wstring& error) {
    Installation installation{installationFolder, sourceFolder, backupFolder, {}, {}};
    if (vacate(installation, pathsToVacate, pathsToInstall, error) && moveIn(installation, pathsToInstall, error))
        return true;
    rollBack(installation);
    return false;
}

}  // namespace vorthmere::update
