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
#include "platform/failure.h"
#include "update/failing.h"

namespace vorthmere::update {
namespace {

using Paths = std::vector<std::string>;
using Folders = std::vector<std::filesystem::path>;

/// The folders, and what has been moved so far.
struct Installation {
    const std::filesystem::path& folder;
    const std::filesystem::path& source;
    const std::filesystem::path& backup;
    Paths backedUp;
    Paths installed;
    Folders madeFolders;  ///< in the installation, parents first
};

bool moveBetween(const std::filesystem::path& from, const std::filesystem::path& to, std::string_view path) {
    return !moveFile(from / path, to / path);
}

/// Creates the parent folders of files below one folder. Does not try the last parent again: neighbours in a list
/// mostly share a parent, and finding a folder takes the system as long as creating one.
class ParentFolders {
public:
    /// @param made receives the folders that were created, parents first
    ParentFolders(const std::filesystem::path& folder, Folders& made) : folder_(folder), made_(made) {}

    bool create(std::string_view path) {
        const std::string_view parent = path.substr(0, path.find_last_of('/') + 1);
        if (last_ == parent) return true;
        if (createFolders((folder_ / path).parent_path(), made_)) return false;
        last_ = parent;
        return true;
    }

private:
    const std::filesystem::path& folder_;
    Folders& made_;
    std::optional<std::string> last_;
};

/// Whether a move that failed moved the file all the same, as may happen over a network. If not, a file at the target
/// is not ours to take back.
bool tookEffect(const std::error_code& failure, const std::filesystem::path& source) {
    std::error_code unknown;
    return !isNotFound(failure) && fileType(source, unknown) == FileType::notFound;
}

bool vacate(Installation& installation, const Paths& pathsToVacate, const Paths& pathsToInstall, std::wstring& error) {
    std::set<std::string_view> affected(pathsToVacate.begin(), pathsToVacate.end());
    affected.insert(pathsToInstall.begin(), pathsToInstall.end());

    Folders madeInBackup;
    ParentFolders backupFolders(installation.backup, madeInBackup);
    for (const std::string_view path : affected) {
        if (!isFreeOfReparsePoints(installation.folder, path))
            return fail(error, L"The installation contains a reparse point in a managed path.");
        const std::filesystem::path installed = installation.folder / path;
        if (fileTypeBelowOrThrow(installation.folder, path, "exists") == FileType::notFound) continue;
        if (fileTypeOrThrow(installed, "status") != FileType::regular)
            return fail(error, L"A managed installation path is not a regular file.");
        if (!backupFolders.create(path)) return fail(error, L"Unable to prepare the update backup.");
        const std::error_code failure = moveFile(installed, installation.backup / path);
        if (!failure || tookEffect(failure, installed)) installation.backedUp.emplace_back(path);
        if (failure) return fail(error, L"Unable to back up the current installation.");
    }
    return true;
}

bool moveIn(Installation& installation, const Paths& pathsToInstall, std::wstring& error) {
    ParentFolders installedFolders(installation.folder, installation.madeFolders);
    for (const std::string& path : pathsToInstall) {
        if (!installedFolders.create(path)) return fail(error, L"Unable to prepare an updated installation folder.");
        const std::error_code failure = moveFile(installation.source / path, installation.folder / path);
        if (!failure || tookEffect(failure, installation.source / path)) installation.installed.push_back(path);
        if (failure) return fail(error, L"Unable to install an updated game file.");
    }
    return true;
}

// The file is moved before it is deleted. A deleted file keeps its name while somebody has it open, and the old file
// could not return. A moved file frees its name at once.
void takeOut(const Installation& installation, const std::string& path) {
    const bool moved = moveBetween(installation.folder, installation.source, path);
    static_cast<void>(removeFile((moved ? installation.source : installation.folder) / path));
}

// Everything in reverse: a new file leaves before the old file returns, and so does a new folder with the name of an
// old file. A step that fails does not stop the others, and is not reported: the failure before the rollback is.
void rollBack(const Installation& installation) {
    for (auto path = installation.installed.rbegin(); path != installation.installed.rend(); ++path)
        takeOut(installation, *path);
    for (auto folder = installation.madeFolders.rbegin(); folder != installation.madeFolders.rend(); ++folder)
        static_cast<void>(removeEmptyFolder(*folder));
    Folders madeAgain;
    ParentFolders installedFolders(installation.folder, madeAgain);
    for (auto path = installation.backedUp.rbegin(); path != installation.backedUp.rend(); ++path) {
        static_cast<void>(installedFolders.create(*path));
        moveBetween(installation.backup, installation.folder, *path);
    }
}

}  // namespace

bool installWithBackup(const std::filesystem::path& installationFolder, const std::filesystem::path& sourceFolder,
                       const std::filesystem::path& backupFolder, const std::vector<std::string>& pathsToVacate,
                       const std::vector<std::string>& pathsToInstall, std::wstring& error) {
    Installation installation{installationFolder, sourceFolder, backupFolder, {}, {}, {}};
    if (vacate(installation, pathsToVacate, pathsToInstall, error) && moveIn(installation, pathsToInstall, error))
        return true;
    rollBack(installation);
    return false;
}

}  // namespace vorthmere::update
