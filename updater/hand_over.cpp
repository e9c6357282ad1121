#include "updater/hand_over.h"

#include <vector>

#include "files/file_changes.h"
#include "install/extracted_tree.h"
#include "install/install_with_backup.h"
#include "install/relaunch.h"
#include "platform/failure.h"
#include "platform/programs.h"
#include "platform/streams.h"
#include "update/failing.h"
#include "update/managed_file_list.h"

namespace vorthmere::update {
namespace {

constexpr std::uint32_t kGameExitTimeoutMs = 120000;

using Paths = std::vector<std::string>;

bool stagedTreeMatches(const std::filesystem::path& staging, const Paths& listed, std::wstring& error) {
    ExtractedFiles staged;
    if (inspectExtractedTree(staging, staged, error) && staged == ExtractedFiles(listed.begin(), listed.end()))
        return true;
    if (error.empty()) error = L"The update package and managed-file list do not match.";
    return false;
}

bool waitForGame(std::uint32_t processId, std::wstring& error) {
    if (processId == 0) return true;
    std::error_code failure;
    const ProcessHandle game = openProcess(processId, failure);
    // There is no such process: the game has already exited.
    if (failure == WindowsError::invalidParameter) return true;
    if (failure) return fail(error, L"Unable to wait for the running game to close.");
    return waitForEnd(game, kGameExitTimeoutMs) || fail(error, L"The game did not close within two minutes.");
}

// Installs the previous release from the backup, with the folders and lists swapped: the new files move to the staging
// folder, the previous files return.
void restorePreviousRelease(const Arguments& arguments, const WorkFolder& work, const Paths& newList,
                            const Paths& installedList, std::wstring& error) {
    std::wstring dropped;
    if (!installWithBackup(arguments.install, work.backup, work.staging, newList, installedList, dropped))
        error += L" The previous build also could not be restored automatically.";
}

}  // namespace

ExitCode handOver(const Arguments& arguments, const WorkFolder& work, std::wstring& error,
                  const ProgressCallback& progress) {
    Paths newList;
    Paths installedList;
    if (!loadManagedFileList(work.staging, newList, error)) return ExitCode::newListUnreadable;
    if (!stagedTreeMatches(work.staging, newList, error)) return ExitCode::stagedTreeMismatch;
    if (!loadManagedFileList(arguments.install, installedList, error)) return ExitCode::installedListUnreadable;

    reportStep(progress, timetable::waitingForGame);
    if (!waitForGame(arguments.parentProcessId, error)) return ExitCode::gameStillRunning;

    const std::error_code failure = createFolders(work.backup);
    reportStep(progress, timetable::installing);
    if (failure) return ExitCode::installationFailed;
    // Without this one file no later update could mend what a power loss left. A failure to flush is no reason to stop.
    static_cast<void>(flushFile(work.staging / kManagedFileListName));
    if (!installWithBackup(arguments.install, work.staging, work.backup, installedList, newList, error))
        return ExitCode::installationFailed;

    reportStep(progress, timetable::launchingGame);
    if (arguments.noRelaunch || relaunchGame(arguments.install, error)) return ExitCode::done;
    restorePreviousRelease(arguments, work, newList, installedList, error);
    return ExitCode::relaunchFailed;
}

}  // namespace vorthmere::update
