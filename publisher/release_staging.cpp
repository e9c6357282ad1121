#include "publisher/release_staging.h"

#include <atomic>

#include "publisher/channel.h"
#include "publisher/durable_files.h"
#include "publisher/in_quotes.h"
#include "publisher/package_reader.h"
#include "publisher/package_writer.h"
#include "publisher/parallel_work.h"
#include "publisher/release_texts.h"
#include "publisher/sha256.h"
#include "update/limits.h"
#include "update/metadata_text.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

bool stageObject(const ReleaseFile& file, const fs::path& target, const BytesDone& done, std::string& error) {
    OutputFile object;
    Sha256 digest;
    const ContentSink copy = [&](std::span<const char> bytes) {
        digest.add(bytes);
        done(bytes.size());
        return object.write(bytes, error);
    };
    if (!object.create(target, error) || !readContent(file, copy, error) || !object.finish(error)) return false;
    if (digest.finish() == file.entry.sha256) return true;
    error = inQuotes(file.entry.path) + " changed while the release was being built; let nothing write to it.";
    return false;
}

/// Packing takes much longer than writing the objects, so a second thread writes them meanwhile. Whichever fails first
/// stops the other.
bool stageContent(const std::vector<ReleaseFile>& files, const std::vector<const ReleaseFile*>& newObjects,
                  const fs::path& workFolder, const PackageRequest& package, PathSet& taken, const BytesDone& done,
                  std::string& error) {
    std::atomic<bool> hasFailed{false};
    return forEachInParallel(
        2,
        [&](std::size_t job, std::string& fault) {
            bool written = true;
            if (job == 0)
                written = writePackage(files, package, hasFailed, taken, done, fault);
            else
                for (std::size_t i = 0; written && !hasFailed && i < newObjects.size(); ++i)
                    written =
                        stageObject(*newObjects[i], workFolder / objectName(newObjects[i]->entry.sha256), done, fault);
            if (!written) hasFailed = true;
            // No sentence means that the other one failed, which has one.
            return written || fault.empty();
        },
        error);
}

bool readBack(const fs::path& workFolder, const StagedRelease& staged, const std::vector<ReleaseFile>& files,
              std::string& error) {
    std::optional<update::Manifest> manifest;
    std::vector<update::InventoryEntry> entries;
    if (!readPublishedManifest(workFolder, manifest, error) ||
        !readInventory(workFolder / inventoryName(staged.manifest.release), staged.manifest, entries, error))
        return false;
    if (manifest == staged.manifest && entries == inventoryOf(files)) return true;
    error = "What was written does not read back as what was meant; nothing was published.";
    return false;
}

}  // namespace

bool stageRelease(const std::vector<ReleaseFile>& files, const std::vector<const ReleaseFile*>& newObjects,
                  const update::Manifest& details, const PreviousPackage* previous, const fs::path& workFolder,
                  Console& console, StagedRelease& staged, std::string& error) {
    const BytesDone done = [&console](std::uint64_t count) { console.advance(count); };
    const fs::path package = workFolder / packageName(details.release);

    std::uint64_t objectBytes = 0;
    for (const ReleaseFile* file : newObjects)
        objectBytes += file->entry.size;
    PathSet taken;
    console.beginStep(
        "Packing " + countOf(files.size(), "file") + " and writing " + countOf(newObjects.size(), "new object"),
        totalBytes(files) + objectBytes);
    const bool written =
        stageContent(files, newObjects, workFolder, {package, update::kMaxPackageBytes, previous}, taken, done, error);
    console.endStep();
    if (!written) return false;

    PackageFacts facts;
    console.beginStep("Verifying what was written", totalBytes(files));
    const bool verified = verifyPackage(package, inventoryOf(files), taken, facts, done, error);
    console.endStep();
    if (!verified) return false;

    staged.manifest = details;
    staged.manifest.size = facts.size;
    staged.manifest.sha256 = facts.sha256;
    staged.manifest.url = update::channelAddress(packageName(details.release));
    staged.inventory = update::inventoryText(staged.manifest, inventoryOf(files));
    return writeFile(workFolder / inventoryName(details.release), staged.inventory, error) &&
           writeFile(workFolder / update::kManifestName, update::manifestText(staged.manifest), error) &&
           readBack(workFolder, staged, files, error);
}

}  // namespace vorthmere::publish
