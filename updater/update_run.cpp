#include "updater/update_run.h"

#include <filesystem>
#include <vector>

#include "files/file_changes.h"
#include "files/reparse_point.h"
#include "install/installation_check.h"
#include "install/relaunch.h"
#include "transfer/downloads.h"
#include "transfer/incremental_staging.h"
#include "update/exit_code.h"
#include "update/manifest.h"
#include "update/release_channel.h"
#include "update/text.h"
#include "update/work_folder.h"
#include "updater/complete_package.h"
#include "updater/hand_over.h"

namespace vorthmere::update {
namespace {

bool obtainManifest(const Arguments& arguments, Manifest& manifest, std::wstring& error) {
    if (arguments.manifestFile.empty()) return fetchManifest(widen(channelAddress(kManifestName)), manifest, error);
    return loadManifest(arguments.manifestFile, manifest, error);
}

ExitCode finishCurrent(const Arguments& arguments, std::wstring& error, const ProgressCallback& progress) {
    reportStep(progress, timetable::alreadyCurrent);
    if (!arguments.noRelaunch && !relaunchGame(arguments.install, error)) return ExitCode::currentButNotRelaunched;
    return ExitCode::done;
}

/// Removes a folder and creates it again, with everything down to `innermost`, which may be the folder itself. False
/// also when one of the two already exists: then the removal did not work, or somebody else created it meanwhile.
bool makeAnew(const std::filesystem::path& folder, const std::filesystem::path& innermost) {
    std::vector<std::filesystem::path> created;
    return !removeTree(folder) && !createFolders(innermost, created) && !created.empty() && created.front() == folder &&
           created.back() == innermost;
}

// The test comes first, so that a junction with the work folder's name cannot lead the removal elsewhere.
ExitCode prepareWorkFolder(const WorkFolder& work, std::wstring& error) {
    if (isReparsePoint(work.folder)) {
        error = L"The updater work folder is an unsafe reparse point.";
        return ExitCode::workFolderUnsafe;
    }
    if (makeAnew(work.folder, work.staging)) return ExitCode::done;
    error = L"The game folder is not writable. Move the portable game outside Program Files or run as administrator.";
    return ExitCode::workFolderNotWritable;
}

ExitCode stageRelease(const Arguments& arguments, const Manifest& manifest, const WorkFolder& work, std::wstring& error,
                      const ProgressCallback& progress) {
    if (stageIncremental(arguments, manifest, work.folder, work.staging, progress, error)) return ExitCode::done;
    error.clear();
    if (!makeAnew(work.staging, work.staging)) {
        error = L"Unable to prepare the complete update package.";
        return ExitCode::workFolderNotWritable;
    }
    reportStep(progress, timetable::preparingCompletePackage);
    return stageCompletePackage(arguments, manifest, work, error, progress);
}

void cleanUp(const WorkFolder& work) {
    static_cast<void>(removeFile(work.package));
    static_cast<void>(removeTree(work.staging));
}

ExitCode run(Arguments& arguments, std::wstring& error, const ProgressCallback& progress) {
    if (!checkInstallation(arguments.install, error)) return ExitCode::installationRejected;

    reportStep(progress, timetable::checkingChannel);
    Manifest manifest;
    if (!obtainManifest(arguments, manifest, error)) return ExitCode::manifestUnavailable;
    if (manifest.release <= arguments.currentRelease) return finishCurrent(arguments, error, progress);

    const WorkFolder work(arguments.install);
    ExitCode result = prepareWorkFolder(work, error);
    if (result == ExitCode::done) result = stageRelease(arguments, manifest, work, error, progress);
    if (result == ExitCode::done) result = handOver(arguments, work, error, progress);
    if (result != ExitCode::done) return result;

    cleanUp(work);
    reportStep(progress, timetable::done);
    return ExitCode::done;
}

}  // namespace

int runUpdate(Arguments arguments, std::wstring& error, const ProgressCallback& progress) {
    return static_cast<int>(run(arguments, error, progress));
}

}  // namespace vorthmere::update
