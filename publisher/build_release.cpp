#include "publisher/build_release.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <system_error>
#include <vector>

#include "publisher/channel.h"
#include "publisher/durable_files.h"
#include "publisher/game_folder.h"
#include "publisher/in_quotes.h"
#include "publisher/parallel_work.h"
#include "publisher/release_details.h"
#include "publisher/release_difference.h"
#include "publisher/release_staging.h"
#include "publisher/release_texts.h"
#include "publisher/sha256.h"
#include "update/decimal.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

bool isInside(const fs::path& inner, const fs::path& outer) {
    const fs::path relative = inner.lexically_relative(outer);
    return !relative.empty() && *relative.begin() != "..";
}

/// The release whose package or inventory has this name.
std::optional<std::uint32_t> releaseOfName(const std::string& name) {
    constexpr std::string_view digits = "0123456789";
    const std::size_t first = std::min(name.find_first_of(digits), name.size());
    const std::size_t end = std::min(name.find_first_not_of(digits, first), name.size());
    std::uint32_t release = 0;
    if (!update::parseDecimal(std::string_view(name).substr(first, end - first), release)) return {};
    if (release == 0 || (name != packageName(release) && name != inventoryName(release))) return {};
    return release;
}

bool judgeFolders(const ReleaseRequest& request, std::string& error) {
    std::error_code failure;
    if (!fs::is_directory(request.gameFolder, failure)) {
        error = "The game folder " + inQuotes(request.gameFolder) + " is not a folder.";
        return false;
    }
    if (fs::exists(request.channel, failure) && !fs::is_directory(request.channel, failure)) {
        error = "The channel " + inQuotes(request.channel) + " is not a folder.";
        return false;
    }
    const fs::path game = fs::canonical(request.gameFolder, failure);
    fs::path channel;
    if (!failure) channel = fs::absolute(request.channel, failure);
    if (!failure) channel = fs::weakly_canonical(channel, failure);
    if (failure) {
        error =
            "Where the channel " + inQuotes(request.channel) + " lies cannot be found out: " + failure.message() + ".";
        return false;
    }
    if (!isInside(game, channel) && !isInside(channel, game)) return true;
    error = "The game folder and the channel must lie apart, neither inside the other.";
    return false;
}

/// One publishing run; each step is a member, run() has their order.
class ReleaseBuild {
public:
    ReleaseBuild(const ReleaseRequest& request, Console& console, ReleaseSummary& summary)
        : request_(request), console_(console), summary_(summary), work_(request.channel / kWorkFolderName) {}

    bool run(std::string& error) {
        const bool judged = judgeDetails(request_.details, error) && judgeFolders(request_, error) &&
                            collectFiles(error) && openChannel(error) && judgeReleaseNumber(error) &&
                            judgePlaces(error) && hashFiles(error) && judgeRepetition(error) && findObjects(error);
        if (!judged) return false;
        const bool published = prepareWorkFolder(error) && stage(error) && publish(error);
        removeWorkFolder(published);
        if (published) summarize();
        return published;
    }

private:
    bool collectFiles(std::string& error) {
        GameFolder game;
        if (!listGameFolder(request_.gameFolder, game, error)) return false;
        for (const std::string& folder : game.emptyFolders)
            console_.line("Note: the empty folder " + inQuotes(folder) + " is left out; a release holds files only.");

        files_ = std::move(game.files);
        addGenerated(update::kReleaseMarkerName, releaseMarkerText(request_.details));
        addGenerated(update::kManagedFileListName, {});
        std::sort(files_.begin(), files_.end(),
                  [](const ReleaseFile& a, const ReleaseFile& b) { return a.entry.path < b.entry.path; });
        std::vector<std::string> paths;
        for (const ReleaseFile& file : files_)
            paths.push_back(file.entry.path);
        for (ReleaseFile& file : files_) {
            if (file.entry.path != update::kManagedFileListName || !file.source.empty()) continue;
            file.text = managedFileListText(paths);
            file.entry.size = file.text.size();
        }
        return judgeReleaseFiles(files_, error);
    }

    void addGenerated(std::string_view path, const std::string& text) {
        files_.push_back({{std::string(path), {}, text.size()}, {}, text});
    }

    // A channel that does not exist yet is neither created nor locked before everything was judged.
    bool openChannel(std::string& error) {
        std::error_code failure;
        channelIsNew_ = !fs::exists(request_.channel, failure);
        return channelIsNew_ || lockFolder(request_.channel, lock_, error);
    }

    bool judgeReleaseNumber(std::string& error) {
        if (!readPublishedManifest(request_.channel, published_, error)) {
            error += " Restore or remove it first: the next release number depends on it.";
            return false;
        }
        if (!published_ || published_->release <= request_.details.release) return true;
        error = "Release " + std::to_string(published_->release) +
                " is published, and updaters never go back: --release must be greater than that.";
        return false;
    }

    bool judgePlaces(std::string& error) const {
        const std::uint32_t release = request_.details.release;
        for (const std::string& name :
             {packageName(release), inventoryName(release), std::string(update::kManifestName)}) {
            std::error_code failure;
            const fs::file_type type = fs::symlink_status(request_.channel / name, failure).type();
            if (type == fs::file_type::not_found || type == fs::file_type::regular) continue;
            error = inQuotes(request_.channel / name) + " is in the way: it is not a regular file.";
            return false;
        }
        return true;
    }

    bool hashFiles(std::string& error) {
        console_.beginStep("Reading " + countOf(files_.size(), "file"), totalBytes(files_));
        const bool hashed = hashReleaseFiles(
            files_, [this](std::uint64_t count) { console_.advance(count); }, error);
        console_.endStep();
        return hashed;
    }

    [[nodiscard]] bool isRepetition() const {
        return published_ && published_->release == request_.details.release;
    }

    bool judgeRepetition(std::string& error) {
        if (!isRepetition()) return true;
        update::Manifest same = request_.details;
        same.size = published_->size;
        same.sha256 = published_->sha256;
        same.url = std::string(update::kDownloadBaseUrl) + packageName(same.release);
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

    bool judgeRepeatedPackage(std::string& error) const {
        if (!isRepetition() || manifest_ == *published_) return true;
        error = "Release " + std::to_string(manifest_.release) +
                (contentIsTheSame_
                     ? " is published already with the same content and details, but its package comes out differently "
                       "now, perhaps because other versions of libarchive or zlib pack it: use the former ones or a "
                       "greater --release."
                     : " is published already with another package, which holds other content or was packed by other "
                       "versions of libarchive or zlib: use a greater --release.");
        return false;
    }

    bool findObjects(std::string& error) {
        std::map<std::string_view, const ReleaseFile*> distinct;
        for (const ReleaseFile& file : files_)
            distinct.emplace(file.entry.sha256, &file);
        std::vector<const ReleaseFile*> contents;
        std::uint64_t bytes = 0;
        for (const auto& [sha256, file] : distinct) {
            contents.push_back(file);
            bytes += file->entry.size;
        }
        summary_.distinctObjects = contents.size();

        std::mutex found;
        console_.beginStep("Looking for objects that the channel has already", bytes);
        const bool looked = forEachInParallel(
            contents.size(),
            [&](std::size_t index, std::string& fault) {
                const ReleaseFile& file = *contents[index];
                const fs::path path = request_.channel / objectName(file.entry.sha256);
                const FileState state = stateOfFile(path, file.entry.size, file.entry.sha256,
                                                    [this](std::uint64_t count) { console_.advance(count); });
                if (state == FileState::notAFile) {
                    fault = inQuotes(path) + " is in the way: it is not a regular file.";
                    return false;
                }
                if (state == FileState::right) return true;
                const std::lock_guard lock(found);
                newObjects_.push_back(&file);
                summary_.newObjectBytes += file.entry.size;
                if (state != FileState::missing) ++summary_.mendedObjects;
                return true;
            },
            error);
        console_.endStep();
        // By path, so that the game folder is read in its own order.
        std::sort(newObjects_.begin(), newObjects_.end());
        summary_.newObjects = newObjects_.size();
        return looked;
    }

    bool prepareWorkFolder(std::string& error) {
        if (channelIsNew_ && (!createFolders(request_.channel, error) || !lockFolder(request_.channel, lock_, error) ||
                              !judgeReleaseNumber(error)))
            return false;
        std::error_code failure;
        fs::remove_all(work_, failure);
        if (!failure) fs::create_directory(work_, failure);
        if (!failure) return true;
        error = inQuotes(work_) + " cannot be prepared: " + failure.message() + ".";
        return false;
    }

    bool stage(std::string& error) {
        StagedRelease staged;
        if (!stageRelease(files_, newObjects_, request_.details, work_, console_, staged, error)) return false;
        manifest_ = staged.manifest;
        inventory_ = staged.inventory;
        return judgeRepeatedPackage(error);
    }

    bool publish(std::string& error) {
        for (const ReleaseFile* object : newObjects_)
            if (!place(objectName(object->entry.sha256), error)) return false;
        return placeUnlessRight(packageName(manifest_.release), manifest_.size, manifest_.sha256, error) &&
               placeUnlessRight(inventoryName(manifest_.release), inventory_.size(), sha256Of(inventory_), error) &&
               syncFolder(request_.channel, error) && placeManifest(error) && syncFolder(request_.channel, error);
    }

    bool place(const std::string& name, std::string& error) const {
        return moveIntoPlace(work_ / name, request_.channel / name, error);
    }

    bool placeUnlessRight(const std::string& name, std::uint64_t size, std::string_view sha256,
                          std::string& error) const {
        const FileState state = stateOfFile(request_.channel / name, size, sha256, [](std::uint64_t) {});
        return state == FileState::right || place(name, error);
    }

    bool placeManifest(std::string& error) const {
        return isRepetition() || place(std::string(update::kManifestName), error);
    }

    void removeWorkFolder(bool published) {
        std::error_code ignored;
        // The lock is held whenever the work folder is this run's own.
        if (lock_) fs::remove_all(work_, ignored);
        if (channelIsNew_ && !published) fs::remove(request_.channel, ignored);
    }

    void summarize() {
        summary_.files = files_.size();
        summary_.bytes = totalBytes(files_);
        summary_.packageBytes = manifest_.size;
        std::vector<update::InventoryEntry> previous;
        if (!readPreviousInventory(previous)) return;
        const ReleaseDifference difference = compareReleases(previous, inventoryOf(files_));
        summary_.incrementalFromPrevious = updatesIncrementally(difference, manifest_);
        summary_.bytesFromPrevious = summary_.incrementalFromPrevious ? difference.bytesToFetch : manifest_.size;
    }

    /// Players come from the release that was published until now; when a run is repeated that is no longer known, and
    /// the newest older one in the channel stands for it.
    bool readPreviousInventory(std::vector<update::InventoryEntry>& entries) {
        std::string fault;
        bool isReadable = false;
        if (published_ && !isRepetition()) {
            summary_.previousRelease = published_->release;
            const std::string name = packageNameOf(*published_) + std::string(update::kInventorySuffix);
            isReadable = readInventory(request_.channel / name, *published_, entries, fault);
        } else {
            if (!findNewestOlderRelease() || !summary_.previousRelease) return false;
            const fs::path inventory = request_.channel / inventoryName(*summary_.previousRelease);
            update::Manifest older;
            isReadable = readInventoryAlone(inventory, older, entries, fault);
        }
        if (!isReadable)
            summary_.previousFault =
                "The inventory of release " + std::to_string(*summary_.previousRelease) + " cannot be read: " + fault;
        return isReadable;
    }

    bool findNewestOlderRelease() {
        std::error_code failure;
        fs::directory_iterator file(request_.channel, failure);
        for (; !failure && file != fs::directory_iterator(); file.increment(failure)) {
            const std::optional<std::uint32_t> release = releaseOfName(file->path().filename().string());
            if (release && *release < manifest_.release)
                summary_.previousRelease = std::max(*release, summary_.previousRelease.value_or(0));
        }
        if (failure) summary_.previousFault = "The channel cannot be listed: " + failure.message() + ".";
        return !failure;
    }

    const ReleaseRequest& request_;
    Console& console_;
    ReleaseSummary& summary_;
    const fs::path work_;
    bool channelIsNew_ = false;
    bool contentIsTheSame_ = false;  ///< as that of the same release in the channel, whose inventory could be read
    Descriptor lock_;
    std::optional<update::Manifest> published_;
    std::vector<ReleaseFile> files_;
    std::vector<const ReleaseFile*> newObjects_;
    update::Manifest manifest_;
    std::string inventory_;
};

}  // namespace

bool buildRelease(const ReleaseRequest& request, Console& console, ReleaseSummary& summary, std::string& error) {
    summary = {};
    return ReleaseBuild(request, console, summary).run(error);
}

}  // namespace vorthmere::publish
