#include "transfer/incremental_staging.h"

#include <cstdint>
#include <system_error>
#include <vector>

#include "files/file_changes.h"
#include "files/reparse_point.h"
#include "platform/changes.h"
#include "transfer/downloads.h"
#include "transfer/fetch_progress.h"
#include "transfer/file_digest.h"
#include "transfer/transfer_report.h"
#include "update/failing.h"
#include "update/file_inventory.h"
#include "update/incremental_update.h"
#include "update/limits.h"
#include "update/managed_file_list.h"
#include "update/release_channel.h"
#include "update/text.h"
#include "update/work_folder.h"

namespace vorthmere::update {
namespace {

/// Which files the installation already has, and what the others amount to.
struct ReusePlan {
    std::vector<bool> reuse;  ///< one flag for each inventory entry: the installed file equals it
    std::uint64_t bytesToFetch = 0;
    std::uint64_t fetchTotal = 0;  ///< number of files to fetch
};

bool obtainInventory(const Arguments& arguments, const Manifest& manifest, const std::filesystem::path& inventoryPath,
                     std::wstring& error) {
    if (arguments.manifestFile.empty())
        return downloadHttpsFile(widen(inventoryAddress(manifest.url)), inventoryPath, kMaxInventoryBytes, {}, error);
    if (arguments.inventoryFile.empty()) return false;
    return !copyFile(arguments.inventoryFile, inventoryPath, Overwrite::yes) ||
           fail(error, L"Unable to read the local file inventory.");
}

bool checkInstalledFiles(const std::filesystem::path& install, const std::vector<InventoryEntry>& entries,
                         ReusePlan& plan, std::wstring& error) {
    for (const InventoryEntry& entry : entries) {
        if (!isFreeOfReparsePoints(install, entry.path))
            return fail(error, L"The installation contains a reparse point in a managed path.");
        const bool matches = installedFileMatches(install / entry.path, entry);
        plan.reuse.push_back(matches);
        if (!matches) {
            plan.bytesToFetch += entry.size;
            ++plan.fetchTotal;
        }
    }
    return true;
}

/// Fetches the changed files one by one and reports its progress.
class ObjectFetcher {
public:
    ObjectFetcher(const Arguments& arguments, const ReusePlan& plan, IncrementalTransfer& transfer,
                  const ProgressCallback& progress)
        : arguments_(arguments), transfer_(transfer), progress_(plan.fetchTotal, plan.bytesToFetch, progress) {}

    bool fetch(const InventoryEntry& entry, const std::filesystem::path& target, std::wstring& error) {
        progress_.reportFile(++transfer_.downloaded, transfer_.bytes);
        if (!place(objectName(entry.sha256), entry.size, target, error)) return false;
        transfer_.bytes += entry.size;
        return true;
    }

private:
    bool place(const std::string& name, std::uint64_t size, const std::filesystem::path& target, std::wstring& error) {
        if (!arguments_.objectDirectory.empty())
            return !copyFile(arguments_.objectDirectory / name, target, Overwrite::no) ||
                   fail(error, L"Unable to read a local update object.");
        const auto report = [this](std::uint64_t received, std::uint64_t) {
            progress_.reportBytes(transfer_.bytes + received);
        };
        return downloadHttpsFile(widen(channelAddress(name)), target, size, report, error);
    }

    const Arguments& arguments_;
    IncrementalTransfer& transfer_;
    FetchProgress progress_;
};

bool stageFiles(const Arguments& arguments, const std::vector<InventoryEntry>& entries, const ReusePlan& plan,
                const std::filesystem::path& stagingFolder, const ProgressCallback& progress,
                IncrementalTransfer& transfer, std::wstring& error) {
    ObjectFetcher fetcher(arguments, plan, transfer, progress);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const InventoryEntry& entry = entries[i];
        const std::filesystem::path target = stagingFolder / entry.path;
        if (createFolders(target.parent_path())) return fail(error, L"Unable to prepare an updated file folder.");
        if (plan.reuse[i]) {
            if (copyFile(arguments.install / entry.path, target, Overwrite::no))
                return fail(error, L"Unable to reuse an installed file.");
            ++transfer.reused;
        } else if (!fetcher.fetch(entry, target, error)) {
            return false;
        }
        if (!installedFileMatches(target, entry))
            return fail(error, L"An updated file failed size or SHA-256 verification.");
    }
    return true;
}

bool matchesManagedFileList(const std::filesystem::path& stagingFolder, const std::vector<InventoryEntry>& entries,
                            std::wstring& error) {
    std::vector<std::string> listed;
    if (loadManagedFileList(stagingFolder, listed, error) && namesSameFiles(entries, listed)) return true;
    return fail(error, L"The file inventory and managed-file list do not match.");
}

}  // namespace

bool stageIncremental(const Arguments& arguments, const Manifest& manifest, const std::filesystem::path& workFolder,
                      const std::filesystem::path& stagingFolder, const ProgressCallback& progress,
                      std::wstring& error) {
    const std::filesystem::path inventoryPath = workFolder / kInventoryName;
    std::vector<InventoryEntry> entries;
    if (!obtainInventory(arguments, manifest, inventoryPath, error)) return false;
    if (!loadFileInventory(inventoryPath, manifest, entries, error)) return false;

    reportStep(progress, timetable::checkingInstalledFiles);
    ReusePlan plan;
    if (!checkInstalledFiles(arguments.install, entries, plan, error)) return false;
    if (!updatesIncrementally(plan.bytesToFetch, manifest)) return false;

    IncrementalTransfer transfer;
    if (!stageFiles(arguments, entries, plan, stagingFolder, progress, transfer, error)) return false;
    if (!matchesManagedFileList(stagingFolder, entries, error)) return false;

    writeTransferReport(workFolder, transfer);
    reportStep(progress, timetable::changedFilesVerified);
    return true;
}

}  // namespace vorthmere::update
