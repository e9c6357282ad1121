#include "updater/complete_package.h"

#include <windows.h>

#include <array>
#include <system_error>

#include "install/archive_tool.h"
#include "install/package_inspection.h"
#include "platform/file_operations.h"
#include "platform/file_status.h"
#include "platform/text.h"
#include "transfer/downloads.h"
#include "transfer/file_digest.h"
#include "transfer/transfer_report.h"
#include "updater/download_progress.h"

namespace vorthmere::update {
namespace {

constexpr UINT kMaxSystemFolderLength = 260;

RunResult bringPackage(const Arguments& arguments, const Manifest& manifest, const std::filesystem::path& package,
                       std::wstring& error, const ProgressCallback& progress) {
    if (arguments.packageFile.empty()) {
        reportProgress(progress, L"Downloading Kelvane " + widen(manifest.version) + L"...", kFirstDownloadPercent);
        return downloadHttpsFile(widen(manifest.url), package, manifest.size, downloadProgress(manifest, progress),
                                 error)
                   ? RunResult::done
                   : RunResult::downloadFailed;
    }
    reportProgress(progress, L"Preparing the verified update package...", 35);
    std::error_code failure;
    copyFile(arguments.packageFile, package, Overwrite::yes, failure);
    if (!failure) return RunResult::done;
    error = L"Unable to stage the local update package.";
    return RunResult::localPackageNotCopied;
}

RunResult verifyPackage(const Manifest& manifest, const std::filesystem::path& package, std::wstring& error,
                        const ProgressCallback& progress) {
    std::error_code failure;
    if (fileSize(package, failure) != manifest.size || failure) {
        error = L"The update archive size does not match the release manifest.";
        return RunResult::packageSizeWrong;
    }
    reportProgress(progress, L"Verifying package integrity...", 68);
    std::string digest;
    if (!sha256File(package, digest, error)) return RunResult::packageDigestWrong;
    if (digest != manifest.sha256) {
        error = L"The update archive failed SHA-256 verification.";
        return RunResult::packageDigestWrong;
    }
    return RunResult::done;
}

// Only the system's own tool is trusted: the search path may lead to anything.
RunResult locateArchiveTool(std::filesystem::path& tool, std::wstring& error) {
    std::array<wchar_t, kMaxSystemFolderLength + 1> systemFolder{};
    const UINT length = GetSystemDirectoryW(systemFolder.data(), static_cast<UINT>(systemFolder.size()));
    if (length == 0 || length > kMaxSystemFolderLength) {
        error = L"Unable to locate the Windows archive tool.";
        return RunResult::systemFolderUnknown;
    }
    tool = std::filesystem::path(systemFolder.data()) / L"tar.exe";
    std::error_code failure;
    if (fileType(tool, failure) != FileType::regular) {
        error = L"This Windows installation does not provide tar.exe. Windows 10 version 1803 or newer is required.";
        return RunResult::archiveToolMissing;
    }
    return RunResult::done;
}

RunResult unpackPackage(const std::filesystem::path& tool, const WorkFolder& work, std::wstring& error,
                        const ProgressCallback& progress) {
    std::string output;
    reportProgress(progress, L"Inspecting the update package...", 75);
    if (!runArchiveTool(tool, {L"-tf", work.package.native()}, work.folder, output, error) ||
        !checkArchiveListing(output, error))
        return RunResult::packageListingRejected;
    reportProgress(progress, L"Unpacking updated game files...", 81);
    if (!runArchiveTool(tool, {L"-xf", work.package.native(), L"-C", work.staging.native()}, work.folder, output,
                        error))
        return RunResult::unpackingFailed;
    return RunResult::done;
}

}  // namespace

RunResult stageCompletePackage(const Arguments& arguments, const Manifest& manifest, const WorkFolder& work,
                               std::wstring& error, const ProgressCallback& progress) {
    std::filesystem::path tool;
    RunResult result = bringPackage(arguments, manifest, work.package, error, progress);
    if (result == RunResult::done) result = verifyPackage(manifest, work.package, error, progress);
    if (result == RunResult::done) result = locateArchiveTool(tool, error);
    if (result == RunResult::done) result = unpackPackage(tool, work, error, progress);
    if (result == RunResult::done) writeFullTransferReport(work.folder, manifest.size);
    return result;
}

}  // namespace vorthmere::update
