#include "updater/update_run.h"

#include <filesystem>
#include <utility>
#include <vector>

#include "install/install_with_backup.h"
#include "install/installation_check.h"
#include "install/package_inspection.h"
#include "install/relaunch.h"
#include "platform/file_operations.h"
#include "platform/reparse_point.h"
#include "platform/text.h"
#include "platform/unique_handle.h"
#include "transfer/downloads.h"
#include "transfer/incremental_staging.h"
#include "update/managed_file_list.h"
#include "update/manifest.h"
#include "update/metadata_file.h"
#include "update/release_channel.h"
#include "updater/complete_package.h"
#include "updater/work_folder.h"

namespace vorthmere::update {
namespace {

constexpr DWORD kGameExitTimeoutMs = 120000;

using Paths = std::vector<std::string>;

bool loadManifest(const Arguments& arguments, Manifest& manifest, std::wstring& error) {
    if (arguments.manifestFile.empty())
        return fetchManifest(widen(kDownloadBaseUrl) + widen(kManifestName), manifest, error);
    std::string text;
    std::string fault;
    if (readMetadataFile(arguments.manifestFile, text, error, kMaxManifestBytes) &&
        parseManifest(text, manifest, fault))
        return true;
    if (error.empty()) error = widen(fault);
    return false;
}

RunResult finishCurrent(const Arguments& arguments, std::wstring& error, const ProgressCallback& progress) {
    reportProgress(progress, L"This installation is already current.", 100);
    if (!arguments.noRelaunch && !relaunchGame(arguments.install, error)) return RunResult::currentButNotRelaunched;
    return RunResult::done;
}

bool emptyStagingFolder(const std::filesystem::path& staging) {
    std::error_code failure;
    removeTree(staging, failure);
    return !failure && createFolders(staging, failure);
}

// The test for a reparse point stands before the removal, so that a junction planted as the work folder never leads the
// removal elsewhere.
RunResult prepareWorkFolder(const WorkFolder& work, std::wstring& error) {
    if (isReparsePoint(work.folder)) {
        error = L"The updater work folder is an unsafe reparse point.";
        return RunResult::workFolderUnsafe;
    }
    std::error_code failure;
    removeTree(work.folder, failure);
    if (failure || !createFolders(work.staging, failure)) {
        error =
            L"The game folder is not writable. Move the portable game outside Program Files or run as administrator.";
        return RunResult::workFolderNotWritable;
    }
    return RunResult::done;
}

RunResult stageRelease(const Arguments& arguments, const Manifest& manifest, const WorkFolder& work,
                       std::wstring& error, const ProgressCallback& progress) {
    if (stageIncremental(arguments, manifest, work.folder, work.staging, progress, error)) return RunResult::done;
    error.clear();
    if (!emptyStagingFolder(work.staging)) {
        error = L"Unable to prepare the complete update package.";
        return RunResult::workFolderNotWritable;
    }
    reportProgress(progress, L"Preparing the complete update package...", 12);
    return stageCompletePackage(arguments, manifest, work, error, progress);
}

bool readManagedFileList(const std::filesystem::path& folder, Paths& paths, std::wstring& error) {
    std::string text;
    std::string fault;
    if (readMetadataFile(folder / kManagedFileListName, text, error, kMaxManagedFileListBytes) &&
        parseManagedFileList(text, paths, fault))
        return true;
    if (error.empty()) error = widen(fault);
    return false;
}

bool stagedTreeMatches(const std::filesystem::path& staging, const Paths& listed, std::wstring& error) {
    ExtractedFiles staged;
    if (inspectExtractedTree(staging, staged, error) && staged == ExtractedFiles(listed.begin(), listed.end()))
        return true;
    if (error.empty()) error = L"The update package and managed-file list do not match.";
    return false;
}

bool waitForGame(std::uint32_t processId, std::wstring& error) {
    if (processId == 0) return true;
    const KernelHandle game(OpenProcess(SYNCHRONIZE, FALSE, processId));
    if (!game) {
        // There is no such process: the game has exited already.
        if (GetLastError() == ERROR_INVALID_PARAMETER) return true;
        error = L"Unable to wait for the running game to close.";
        return false;
    }
    if (WaitForSingleObject(game.get(), kGameExitTimeoutMs) == WAIT_OBJECT_0) return true;
    error = L"The game did not close within two minutes.";
    return false;
}

// The same installation with folders and lists swapped: the new files leave for the staging folder, the previous ones
// return from the backup.
void restorePreviousRelease(const Arguments& arguments, const WorkFolder& work, const Paths& newList,
                            const Paths& installedList, std::wstring& error) {
    std::wstring dropped;
    if (!installWithBackup(arguments.install, work.backup, work.staging, newList, installedList, dropped))
        error += L" The previous build also could not be restored automatically.";
}

RunResult handOver(const Arguments& arguments, const WorkFolder& work, std::wstring& error,
                   const ProgressCallback& progress) {
    Paths newList;
    Paths installedList;
    if (!readManagedFileList(work.staging, newList, error)) return RunResult::newListUnreadable;
    if (!stagedTreeMatches(work.staging, newList, error)) return RunResult::stagedTreeMismatch;
    if (!readManagedFileList(arguments.install, installedList, error)) return RunResult::installedListUnreadable;

    reportProgress(progress, L"Waiting for Kelvane to close...", 88);
    if (!waitForGame(arguments.parentProcessId, error)) return RunResult::gameStillRunning;

    std::error_code failure;
    createFolders(work.backup, failure);
    reportProgress(progress, L"Installing the new release...", 94);
    if (failure) return RunResult::installationFailed;
    if (!installWithBackup(arguments.install, work.staging, work.backup, installedList, newList, error))
        return RunResult::installationFailed;

    reportProgress(progress, L"Launching Kelvane...", 98);
    if (!arguments.noRelaunch && !relaunchGame(arguments.install, error)) {
        restorePreviousRelease(arguments, work, newList, installedList, error);
        return RunResult::relaunchFailed;
    }
    return RunResult::done;
}

void cleanUp(const WorkFolder& work) {
    std::error_code ignored;
    removeFile(work.package, ignored);
    removeTree(work.staging, ignored);
}

RunResult run(Arguments& arguments, std::wstring& error, const ProgressCallback& progress) {
    if (!checkInstallation(arguments.install, error)) return RunResult::installationRejected;

    reportProgress(progress, L"Checking the alpha channel...", 5);
    Manifest manifest;
    if (!loadManifest(arguments, manifest, error)) return RunResult::manifestUnavailable;
    if (manifest.release <= arguments.currentRelease) return finishCurrent(arguments, error, progress);

    const WorkFolder work(arguments.install);
    RunResult result = prepareWorkFolder(work, error);
    if (result == RunResult::done) result = stageRelease(arguments, manifest, work, error, progress);
    if (result == RunResult::done) result = handOver(arguments, work, error, progress);
    if (result != RunResult::done) return result;

    cleanUp(work);
    reportProgress(progress, L"Update complete. Welcome back, pilot.", 100);
    return RunResult::done;
}

}  // namespace

int runUpdate(Arguments arguments, std::wstring& error, const ProgressCallback& progress) {
    return static_cast<int>(run(arguments, error, progress));
}

}  // namespace vorthmere::update
