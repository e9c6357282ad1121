#include "install/install_with_backup.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/file_operations.h"
#include "platform/file_status.h"

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

bool moveFile(const std::filesystem::path& from, const std::filesystem::path& to, std::string_view path) {
    std::error_code failure;
    renameFile(from / path, to / path, failure);
    return !failure;
}

/// Makes the parent folders of files below one folder. Neighbours in a list mostly share theirs, and the platform takes
/// as long to find a folder there as to make it: what was made for the last file is not asked for again.
class ParentFolders {
public:
    explicit ParentFolders(const std::filesystem::path& folder) : folder_(folder) {}

    bool create(std::string_view path) {
        const std::string_view parent = path.substr(0, path.find_last_of('/') + 1);
        if (last_ == parent) return true;
        std::error_code failure;
        createFolders((folder_ / path).parent_path(), failure);
        if (failure) return false;
        last_ = parent;
        return true;
    }

private:
    const std::filesystem::path& folder_;
    std::optional<std::string> last_;
};

bool vacate(Installation& installation, const Paths& pathsToVacate, const Paths& pathsToInstall, std::wstring& error) {
    const auto fail = [&error](std::wstring_view sentence) {
        error = sentence;
        return false;
    };
    std::set<std::string_view> affected(pathsToVacate.begin(), pathsToVacate.end());
    affected.insert(pathsToInstall.begin(), pathsToInstall.end());

    ParentFolders backupFolders(installation.backup);
    for (const std::string_view path : affected) {
        if (!isFreeOfReparsePoints(installation.folder, path))
            return fail(L"The installation contains a reparse point in a managed path.");
        const std::filesystem::path installed = installation.folder / path;
        if (fileTypeOrThrow(installed, "exists") == FileType::notFound) continue;
        if (fileTypeOrThrow(installed, "status") != FileType::regular)
            return fail(L"A managed installation path is not a regular file.");
        if (!backupFolders.create(path)) return fail(L"Unable to prepare the update backup.");
        if (!moveFile(installation.folder, installation.backup, path))
            return fail(L"Unable to back up the current installation.");
        installation.backedUp.emplace_back(path);
    }
    return true;
}

bool moveIn(Installation& installation, const Paths& pathsToInstall, std::wstring& error) {
    ParentFolders installedFolders(installation.folder);
    for (const std::string& path : pathsToInstall) {
        if (!installedFolders.create(path)) {
            error = L"Unable to prepare an updated installation folder.";
            return false;
        }
        if (!moveFile(installation.source, installation.folder, path)) {
            error = L"Unable to install an updated game file.";
            return false;
        }
        installation.installed.push_back(path);
    }
    return true;
}

// The reverse order removes a file before the one that it replaced returns. Going on behind a failure saves what can be
// saved; the failure that led here is the one worth reporting.
void rollBack(const Installation& installation) {
    std::error_code ignored;
    for (auto path = installation.installed.rbegin(); path != installation.installed.rend(); ++path)
        removeFile(installation.folder / *path, ignored);
    ParentFolders installedFolders(installation.folder);
    for (auto path = installation.backedUp.rbegin(); path != installation.backedUp.rend(); ++path) {
        installedFolders.create(*path);
        moveFile(installation.backup, installation.folder, *path);
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
