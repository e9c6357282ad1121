#include "publisher/build_release.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "publisher/channel.h"
#include "publisher/channel_file.h"
#include "publisher/channel_listing.h"
#include "publisher/durable_files.h"
#include "publisher/entry_facts.h"
#include "publisher/folder_changes.h"
#include "publisher/game_folder.h"
#include "publisher/in_quotes.h"
#include "publisher/interruption.h"
#include "publisher/missing_objects.h"
#include "publisher/previous_package.h"
#include "publisher/previous_release.h"
#include "publisher/program_file.h"
#include "publisher/release_details.h"
#include "publisher/release_difference.h"
#include "publisher/release_folders.h"
#include "publisher/release_hashing.h"
#include "publisher/release_number.h"
#include "publisher/release_rules.h"
#include "publisher/release_staging.h"
#include "publisher/release_texts.h"
#include "publisher/sha256.h"
#include "update/incremental_update.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

/// One publishing run. Each step is a member function; run() calls them in order.
class ReleaseBuild {
public:
    ReleaseBuild(const ReleaseRequest& request, Console& console, ReleaseSummary& summary)
        : request_(request), console_(console), summary_(summary), work_(request.channel / kWorkFolderName) {}

    bool run(std::string& error) {
        const bool judged = judgeDetails(request_.details, error) &&
                            judgeFolders(request_.gameFolder, request_.channel, error) && collectFiles(error) &&
                            openChannel(error) && readChannel(error) && judgePlaces(error) &&
                            judgeFolderChanges(error) && hashFiles(error) && judgeRepetition(error) &&
                            findMissingObjects(files_, request_.channel, console_, missing_, error);
        if (!judged) return false;
        if (request_.isDryRun) {
            summarize();
            return true;
        }
        const bool published = prepareWorkFolder(error) && stage(error) && publish(error);
        removeLeftovers(published);
        if (published) summarize();
        return published;
    }

private:
    bool collectFiles(std::string& error) {
        GameFolder game;
        if (!listGameFolder(request_.gameFolder, request_.patterns, game, error)) return false;
        for (const std::string& folder : game.emptyFolders)
            note("The empty folder " + inQuotes(folder) + " is left out; a release holds files only.");
        files_ = withGeneratedFiles(std::move(game.files), request_.details);
        return judgeReleaseFiles(files_, error) && judgePrograms(error);
    }

    bool judgePrograms(std::string& error) const {
        if (request_.allowAnyPrograms) return true;
        const fs::path updater = request_.gameFolder / update::kUpdaterExecutableName;
        return isWindowsProgram(request_.gameFolder / update::kGameExecutableName, update::kGameExecutableName,
                                error) &&
               isWindowsProgram(updater, update::kUpdaterExecutableName, error) &&
               holdsAddress(updater, update::kDownloadBaseUrl, error);
    }

    void note(const std::string& sentence) {
        summary_.notes.push_back(sentence);
        console_.line("Note: " + sentence);
    }

    // A new channel is neither created nor locked before everything was judged.
    bool openChannel(std::string& error) {
        std::error_code failure;
        channelIsNew_ = factsOf(request_.channel, failure).kind == EntryKind::missing;
        return channelIsNew_ || lockFolder(request_.channel, lock_, error);
    }

    bool readChannel(std::string& error) {
        if (!hasAddressOfTool(request_.channel, error)) return false;
        if (!readPublishedManifest(request_.channel, published_, error)) {
            error += " Restore or remove it first: the next release number depends on it.";
            return false;
        }
        return listChannel(request_.channel, listing_, error) &&
               judgeReleaseNumber(request_.details.release, published_, listing_, request_.allowJump, error);
    }

    bool judgePlaces(std::string& error) const {
        const std::uint32_t release = request_.details.release;
        for (const std::string& name :
             {packageName(release), inventoryName(release), std::string(update::kManifestName)}) {
            if (!lookAtFile(request_.channel / name).isInTheWay()) continue;
            error = inQuotes(request_.channel / name) + " is in the way: it is not a regular file.";
            return false;
        }
        return true;
    }

    bool judgeFolderChanges(std::string& error) {
        const std::uint32_t release = request_.details.release;
        std::vector<ListedRelease> older;
        for (const std::string& fault : readReleasesBelow(release, request_.channel, listing_, older))
            note(fault + " So it is not known whether its players can install this release.");
        for (const std::string& change : folderChanges(older, {release, inventoryOf(files_)})) {
            if (request_.allowFolderChanges) {
                note(change);
                continue;
            }
            if (!error.empty()) error += '\n';
            error += change + " Use another name, or give --allow-folder-changes if nobody has that release any more.";
        }
        return error.empty();
    }

    bool hashFiles(std::string& error) {
        const PreviousRelease source = releaseToTakeFrom();
        PreviousPackage& package = previousPackage_.emplace();
        if (source.entries.empty() ||
            !package.open(request_.channel / source.packageName, source.packageSha256, source.entries))
            previousPackage_.reset();
        return hashReleaseFiles(files_, previousPackage_, console_, error);
    }

    [[nodiscard]] bool isRepetition() const {
        return published_ && published_->release == request_.details.release;
    }

    bool judgeRepetition(std::string& error) {
        if (!isRepetition()) return true;
        update::Manifest same = request_.details;
        same.size = published_->size;
        same.sha256 = published_->sha256;
        same.url = update::channelAddress(packageName(same.release));
        std::string ignored;
        std::vector<update::InventoryEntry> entries;
        const bool isReadable =
            readInventory(request_.channel / inventoryName(same.release), *published_, entries, ignored);
        contentIsTheSame_ = isReadable && entries == inventoryOf(files_);
        if (same == *published_ && (!isReadable || contentIsTheSame_)) return true;
        error = "Release " + std::to_string(same.release) +
                " is published already with other content or other details: use a greater --release.";
        return false;
    }

    bool prepareWorkFolder(std::string& error) {
        if (channelIsNew_ && (!createChannel(error) || !readChannel(error))) return false;
        if (!removeTree(work_, error)) return false;
        std::error_code failure;
        if (fs::create_directory(work_, failure)) return true;
        error = inQuotes(work_) + " cannot be prepared: " + failure.message() + ".";
        return false;
    }

    /// Between the two calls another run that failed may remove the folder.
    bool createChannel(std::string& error) {
        constexpr int kTries = 10;
        for (int tried = 0; tried < kTries; ++tried) {
            error.clear();
            std::error_code failure;
            if (!createFolders(request_.channel, made_, error)) return false;
            if (lockFolder(request_.channel, lock_, error)) return true;
            if (factsOfTarget(request_.channel, failure).kind != EntryKind::missing) return false;
        }
        return false;
    }

    bool stage(std::string& error) {
        StagedRelease staged;
        if (!stageRelease(files_, missing_.files, request_.details, previousPackage_ ? &*previousPackage_ : nullptr,
                          work_, console_, staged, error))
            return false;
        manifest_ = staged.manifest;
        inventory_ = staged.inventory;
        return judgeRepeatedPackage(error) && judgeUnknownPackage(error);
    }

    /// A repetition reuses the package of the release itself, so that the result is the published one.
    [[nodiscard]] PreviousRelease releaseToTakeFrom() const {
        const std::uint32_t release = request_.details.release;
        return findPreviousRelease(isRepetition() ? release + 1 : release, published_, request_.channel, listing_);
    }

    bool judgeRepeatedPackage(std::string& error) const {
        if (!isRepetition() || manifest_ == *published_) return true;
        error = "Release " + std::to_string(manifest_.release) +
                (contentIsTheSame_
                     ? " is published already with the same content and details, but its package comes out differently "
                       "now, perhaps because another version of zlib packs it: use the former one or a greater "
                       "--release."
                     : " is published already with another package, which holds other content or was packed by another "
                       "version of zlib: use a greater --release.");
        return false;
    }

    /// Without a manifest nobody knows what was published, so nothing with this number may change.
    bool judgeUnknownPackage(std::string& error) const {
        if (published_) return true;
        for (const auto& [name, found] : {std::pair{packageName(manifest_.release), packageInChannel()},
                                          std::pair{inventoryName(manifest_.release), inventoryInChannel()}}) {
            if (found.isRight() || found.state == ChannelFile::State::missing) continue;
            error = "The channel has lost its manifest, and " + inQuotes(name) +
                    " holds something else, which may have been published: use a greater --release.";
            return false;
        }
        return true;
    }

    [[nodiscard]] ChannelFile packageInChannel() const {
        return compareFile(request_.channel / packageName(manifest_.release), manifest_.size, manifest_.sha256,
                           [](std::uint64_t) {});
    }

    [[nodiscard]] ChannelFile inventoryInChannel() const {
        return compareFile(request_.channel / inventoryName(manifest_.release), inventory_.size(), sha256Of(inventory_),
                           [](std::uint64_t) {});
    }

    bool publish(std::string& error) {
        if (isInterrupted()) {
            error = interruptionSentence();
            return false;
        }
        for (const ReleaseFile* object : missing_.files)
            if (!place(objectName(object->entry.sha256), error)) return false;
        return placeUnlessRight(packageName(manifest_.release), packageInChannel(), summary_.mendedPackage, error) &&
               placeUnlessRight(inventoryName(manifest_.release), inventoryInChannel(), summary_.mendedInventory,
                                error) &&
               syncFolder(request_.channel, error) && placeManifest(error) && syncFolder(request_.channel, error);
    }

    bool place(const std::string& name, std::string& error) const {
        return moveIntoPlace(work_ / name, request_.channel / name, error);
    }

    bool placeUnlessRight(const std::string& name, const ChannelFile& found, bool& mended, std::string& error) const {
        mended = !found.isRight() && found.state != ChannelFile::State::missing;
        return found.isRight() || place(name, error);
    }

    bool placeManifest(std::string& error) const {
        const bool isThere = isRepetition() && lookAtFile(request_.channel / update::kManifestName).isRight();
        return isThere || place(std::string(update::kManifestName), error);
    }

    void removeLeftovers(bool published) {
        // Only a run that holds the lock may remove the work folder and the folders that it made.
        if (!lock_) return;
        std::string stays;
        static_cast<void>(removeTree(work_, stays));
        if (!published) removeMadeFolders(made_, std::move(lock_));
    }

    void summarize() {
        summary_.files = files_.size();
        summary_.bytes = totalBytes(files_);
        summary_.packageBytes = manifest_.size;
        summary_.distinctObjects = missing_.distinct;
        summary_.newObjects = missing_.files.size();
        summary_.newObjectBytes = missing_.bytes;
        summary_.mendedObjects = missing_.damaged;
        const PreviousRelease previous =
            findPreviousRelease(request_.details.release, published_, request_.channel, listing_);
        summary_.previousRelease = previous.release;
        summary_.previousFault = previous.fault;
        if (!previous.release || !previous.fault.empty()) return;
        const ReleaseDifference difference = compareReleases(previous.entries, inventoryOf(files_));
        summary_.incrementalFromPrevious =
            request_.isDryRun || update::updatesIncrementally(difference.bytesToFetch, manifest_);
        summary_.bytesFromPrevious = summary_.incrementalFromPrevious ? difference.bytesToFetch : manifest_.size;
    }

    const ReleaseRequest& request_;
    Console& console_;
    ReleaseSummary& summary_;
    const fs::path work_;
    bool channelIsNew_ = false;
    bool contentIsTheSame_ = false;  ///< as in the channel's readable inventory of this release
    std::vector<fs::path> made_;
    Descriptor lock_;
    std::optional<update::Manifest> published_;
    ChannelListing listing_;
    std::vector<ReleaseFile> files_;
    std::optional<PreviousPackage> previousPackage_;
    MissingObjects missing_;
    update::Manifest manifest_;
    std::string inventory_;
};

}  // namespace

bool buildRelease(const ReleaseRequest& request, Console& console, ReleaseSummary& summary, std::string& error) {
    summary = {};
    return ReleaseBuild(request, console, summary).run(error);
}

}  // namespace vorthmere::publish
