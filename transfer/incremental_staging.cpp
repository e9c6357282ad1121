#include "transfer/incremental_staging.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <system_error>
#include <vector>

#include "platform/file_operations.h"
#include "platform/reparse_point.h"
#include "platform/text.h"
#include "transfer/downloads.h"
#include "transfer/fetch_progress.h"
#include "transfer/file_digest.h"
#include "transfer/transfer_report.h"
#include "update/file_inventory.h"
#include "update/managed_file_list.h"
#include "update/metadata_file.h"
#include "update/release_channel.h"

namespace vorthmere::update {
namespace {

constexpr const wchar_t* kInventoryName = L"inventory.txt";

/// What the check of the installation found.
struct ReusePlan {
    std::vector<bool> reuse;  ///< one flag per inventory entry: the installed file already equals it
    std::uint64_t bytesToFetch = 0;
    std::uint64_t fetchTotal = 0;  ///< files
};

bool obtainInventory(const Arguments& arguments, const Manifest& manifest, const std::filesystem::path& inventoryPath,
                     std::wstring& error) {
    if (arguments.manifestFile.empty())
        return downloadHttpsFile(widen(manifest.url) + widen(kInventorySuffix), inventoryPath, kMaxInventoryBytes, {},
                                 error);
    if (arguments.inventoryFile.empty()) return false;
    std::error_code failure;
    copyFile(arguments.inventoryFile, inventoryPath, Overwrite::yes, failure);
    if (failure) error = L"Unable to read the local file inventory.";
    return !failure;
}

bool readInventory(const std::filesystem::path& inventoryPath, const Manifest& manifest,
                   std::vector<InventoryEntry>& entries, std::wstring& error) {
    std::string text;
    std::string fault;
    if (readMetadataFile(inventoryPath, text, error, kMaxInventoryBytes) &&
        parseFileInventory(text, manifest, entries, fault))
        return true;
    if (error.empty()) error = widen(fault);
    return false;
}

bool checkInstalledFiles(const std::filesystem::path& install, const std::vector<InventoryEntry>& entries,
                         ReusePlan& plan, std::wstring& error) {
    for (const InventoryEntry& entry : entries) {
        if (!isFreeOfReparsePoints(install, entry.path)) {
            error = L"The installation contains a reparse point in a managed path.";
            return false;
        }
        const bool matches = installedFileMatches(install / entry.path, entry);
        plan.reuse.push_back(matches);
        if (!matches) {
            plan.bytesToFetch += entry.size;
            ++plan.fetchTotal;
        }
    }
    return true;
}

/// Fetches the changed files one by one and tells how far along it is.
class ObjectFetcher {
public:
    ObjectFetcher(const Arguments& arguments, const ReusePlan& plan, IncrementalTransfer& transfer,
                  const ProgressCallback& progress)
        : arguments_(arguments), transfer_(transfer), progress_(plan.fetchTotal, plan.bytesToFetch, progress) {}

    bool fetch(const InventoryEntry& entry, const std::filesystem::path& target, std::wstring& error) {
        progress_.reportFile(++transfer_.downloaded, transfer_.bytes);
        const std::string name = std::string(kObjectNamePrefix) + entry.sha256 + std::string(kObjectNameSuffix);
        if (!arguments_.objectDirectory.empty()) {
            std::error_code failure;
            copyFile(arguments_.objectDirectory / name, target, Overwrite::no, failure);
            if (failure) error = L"Unable to read a local update object.";
            if (failure) return false;
        } else if (!downloadHttpsFile(
                       widen(kDownloadBaseUrl) + widen(name), target, entry.size,
                       [this](std::uint64_t received, std::uint64_t) {
                           progress_.reportBytes(transfer_.bytes + received);
                       },
                       error)) {
            return false;
        }
        transfer_.bytes += entry.size;
        return true;
    }

private:
    const Arguments& arguments_;
    IncrementalTransfer& transfer_;
    FetchProgress progress_;
};

bool stageFiles(const Arguments& arguments, const std::vector<InventoryEntry>& entries, const ReusePlan& plan,
                const std::filesystem::path& stagingFolder, const ProgressCallback& progress,
                IncrementalTransfer& transfer, std::wstring& error) {
    ObjectFetcher fetcher(arguments, plan, transfer, progress);
    const auto fail = [&error](std::wstring_view sentence) {
        error = sentence;
        return false;
    };

    for (std::size_t i = 0; i < entries.size(); ++i) {
        const InventoryEntry& entry = entries[i];
        const std::filesystem::path target = stagingFolder / entry.path;
        std::error_code failure;
        createFolders(target.parent_path(), failure);
        if (failure) return fail(L"Unable to prepare an updated file folder.");
        if (plan.reuse[i]) {
            copyFile(arguments.install / entry.path, target, Overwrite::no, failure);
            if (failure) return fail(L"Unable to reuse an installed file.");
            ++transfer.reused;
        } else if (!fetcher.fetch(entry, target, error)) {
            return false;
        }
        if (!installedFileMatches(target, entry)) return fail(L"An updated file failed size or SHA-256 verification.");
    }
    return true;
}

bool matchesManagedFileList(const std::filesystem::path& stagingFolder, const std::vector<InventoryEntry>& entries,
                            std::wstring& error) {
    std::string text;
    std::string fault;
    std::vector<std::string> listed;
    if (readMetadataFile(stagingFolder / kManagedFileListName, text, error, kMaxManagedFileListBytes) &&
        parseManagedFileList(text, listed, fault)) {
        std::set<std::string_view> inventoryPaths;
        for (const InventoryEntry& entry : entries)
            inventoryPaths.insert(entry.path);
        if (inventoryPaths == std::set<std::string_view>(listed.begin(), listed.end())) return true;
    }
    error = L"The file inventory and managed-file list do not match.";
    return false;
}

}  // namespace

bool stageIncremental(const Arguments& arguments, const Manifest& manifest, const std::filesystem::path& workFolder,
                      const std::filesystem::path& stagingFolder, const ProgressCallback& progress,
                      std::wstring& error) {
    const std::filesystem::path inventoryPath = workFolder / kInventoryName;
    std::vector<InventoryEntry> entries;
    if (!obtainInventory(arguments, manifest, inventoryPath, error)) return false;
    if (!readInventory(inventoryPath, manifest, entries, error)) return false;

    reportProgress(progress, L"Checking installed files...", 9);
    ReusePlan plan;
    if (!checkInstalledFiles(arguments.install, entries, plan, error)) return false;
    if (plan.bytesToFetch >= manifest.size) return false;

    IncrementalTransfer transfer;
    if (!stageFiles(arguments, entries, plan, stagingFolder, progress, transfer, error)) return false;
    if (!matchesManagedFileList(stagingFolder, entries, error)) return false;

    writeTransferReport(workFolder, transfer);
    reportProgress(progress, L"Changed files verified; unchanged files reused.", 84);
    return true;
}

}  // namespace vorthmere::update
