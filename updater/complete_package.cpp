#include "updater/complete_package.h"

#include <system_error>

#include "files/file_status.h"
#include "install/archive_tool.h"
#include "platform/changes.h"
#include "platform/programs.h"
#include "transfer/downloads.h"
#include "transfer/file_digest.h"
#include "transfer/transfer_report.h"
#include "update/archive_listing.h"
#include "update/text.h"
#include "updater/download_progress.h"

namespace vorthmere::update {
namespace {

ExitCode downloadPackage(const Manifest& manifest, const std::filesystem::path& package, std::wstring& error,
                         const ProgressCallback& progress) {
    const std::wstring text = std::wstring(timetable::downloadingRelease) + widen(manifest.version) + L"...";
    reportProgress(progress, text, timetable::downloadingPackage.first);
    if (downloadHttpsFile(widen(manifest.url), package, manifest.size, downloadProgress(manifest, progress), error))
        return ExitCode::done;
    return ExitCode::downloadFailed;
}

ExitCode copyPackage(const std::filesystem::path& local, const std::filesystem::path& package, std::wstring& error,
                     const ProgressCallback& progress) {
    reportStep(progress, timetable::copyingLocalPackage);
    if (!copyFile(local, package, Overwrite::yes)) return ExitCode::done;
    error = L"Unable to stage the local update package.";
    return ExitCode::localPackageNotCopied;
}

ExitCode verifyPackage(const Manifest& manifest, const std::filesystem::path& package, std::wstring& error,
                       const ProgressCallback& progress) {
    std::error_code failure;
    if (fileSize(package, failure) != manifest.size || failure) {
        error = L"The update archive size does not match the release manifest.";
        return ExitCode::packageSizeWrong;
    }
    reportStep(progress, timetable::verifyingPackage);
    std::string digest;
    if (!sha256File(package, digest, error)) return ExitCode::packageDigestWrong;
    if (digest == manifest.sha256) return ExitCode::done;
    error = L"The update archive failed SHA-256 verification.";
    return ExitCode::packageDigestWrong;
}

// Only the system's own tool is trusted. The search path may lead to another one.
ExitCode locateArchiveTool(std::filesystem::path& tool, std::wstring& error) {
    const std::filesystem::path folder = systemFolder();
    if (folder.empty()) {
        error = L"Unable to locate the Windows archive tool.";
        return ExitCode::systemFolderUnknown;
    }
    tool = folder / "tar.exe";
    std::error_code failure;
    if (fileType(tool, failure) == FileType::regular) return ExitCode::done;
    error = L"This Windows installation does not provide tar.exe. Windows 10 version 1803 or newer is required.";
    return ExitCode::archiveToolMissing;
}

ExitCode unpackPackage(const std::filesystem::path& tool, const WorkFolder& work, std::wstring& error,
                       const ProgressCallback& progress) {
    std::string output;
    reportStep(progress, timetable::inspectingPackage);
    if (!runArchiveTool(tool, {L"-tf", work.package.wstring()}, work.folder, output, error) ||
        !checkArchiveListing(output, error))
        return ExitCode::packageListingRejected;
    reportStep(progress, timetable::unpackingPackage);
    if (!runArchiveTool(tool, {L"-xf", work.package.wstring(), L"-C", work.staging.wstring()}, work.folder, output,
                        error))
        return ExitCode::unpackingFailed;
    return ExitCode::done;
}

}  // namespace

ExitCode stageCompletePackage(const Arguments& arguments, const Manifest& manifest, const WorkFolder& work,
                              std::wstring& error, const ProgressCallback& progress) {
    std::filesystem::path tool;
    ExitCode result = arguments.packageFile.empty() ? downloadPackage(manifest, work.package, error, progress)
                                                    : copyPackage(arguments.packageFile, work.package, error, progress);
    if (result == ExitCode::done) result = verifyPackage(manifest, work.package, error, progress);
    if (result == ExitCode::done) result = locateArchiveTool(tool, error);
    if (result == ExitCode::done) result = unpackPackage(tool, work, error, progress);
    if (result == ExitCode::done) writeFullTransferReport(work.folder, manifest.size);
    return result;
}

}  // namespace vorthmere::update
