#include "publisher/collect_garbage.h"

#include <algorithm>
#include <set>

#include "publisher/channel.h"
#include "publisher/channel_listing.h"
#include "publisher/durable_files.h"
#include "publisher/entry_facts.h"
#include "publisher/in_quotes.h"
#include "publisher/interruption.h"
#include "publisher/release_texts.h"
#include "update/release_channel.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

class GarbageCollection {
public:
    GarbageCollection(const GarbageRequest& request, GarbageSummary& summary) : request_(request), summary_(summary) {}

    bool run(std::string& error) {
        return lockFolder(request_.channel, lock_, error) && readChannel(error) && readKeptInventories(error) &&
               removeReleases(error) && removeObjects(error) && removeWorkFolder(error);
    }

private:
    bool readChannel(std::string& error) {
        if (!readPublishedManifest(request_.channel, published_, error)) return false;
        if (!published_) {
            error = inQuotes(update::kManifestName) +
                    " is missing: without it nobody can tell what is needed, so nothing is removed.";
            return false;
        }
        if (!listChannel(request_.channel, listing_, error)) return false;
        chooseReleases();
        return true;
    }

    void chooseReleases() {
        for (auto entry = listing_.releases.rbegin(); entry != listing_.releases.rend(); ++entry) {
            const std::uint32_t release = entry->first;
            const bool wasOffered = release <= published_->release;
            const bool stays = release == published_->release || !request_.keep ||
                               (wasOffered && keptBeforePublished_ + 1 < *request_.keep);
            if (stays && request_.keep && release != published_->release) ++keptBeforePublished_;
            (stays ? summary_.keptReleases : summary_.removedReleases).push_back(release);
        }
    }

    bool readKeptInventories(std::string& error) {
        const std::string offered = inventoryNameOf(*published_);
        std::vector<update::InventoryEntry> entries;
        if (!readInventory(request_.channel / offered, *published_, entries, error)) return refuse(error);
        need(entries);
        for (const std::uint32_t release : summary_.keptReleases) {
            update::Manifest header;
            if (!listing_.releases.at(release).hasInventory) continue;
            if (!readInventoryAlone(request_.channel / inventoryName(release), header, entries, error))
                return refuse(error);
            need(entries);
        }
        return true;
    }

    static bool refuse(std::string& error) {
        error += " So it is not known which objects are needed, and nothing is removed.";
        return false;
    }

    void need(const std::vector<update::InventoryEntry>& entries) {
        for (const update::InventoryEntry& entry : entries)
            needed_.insert(objectName(entry.sha256));
    }

    bool removeReleases(std::string& error) {
        for (const std::uint32_t release : summary_.removedReleases)
            if (listing_.releases.at(release).hasPackage && !remove(packageName(release), error)) return false;
        for (const std::uint32_t release : summary_.removedReleases)
            if (listing_.releases.at(release).hasInventory && !remove(inventoryName(release), error)) return false;
        return request_.isDryRun || syncFolder(request_.channel, error);
    }

    bool removeObjects(std::string& error) {
        for (const std::string& object : listing_.objects)
            if (!needed_.contains(object) && !remove(object, error)) return false;
        return request_.isDryRun || syncFolder(request_.channel, error);
    }

    bool removeWorkFolder(std::string& error) const {
        return request_.isDryRun || removeTree(request_.channel / kWorkFolderName, error);
    }

    bool remove(const std::string& name, std::string& error) {
        const fs::path file = request_.channel / name;
        std::error_code failure;
        const EntryFacts facts = factsOf(file, failure);
        // A link or a folder is no file of a channel, and stays.
        if (failure || facts.kind != EntryKind::file) return true;
        if (isInterrupted()) {
            error = "Interrupted; what was not yet removed is still there.";
            return false;
        }
        if (!request_.isDryRun && !removeFile(file, error)) return false;
        summary_.removedFiles.push_back(name);
        summary_.removedBytes += facts.size;
        return true;
    }

    const GarbageRequest& request_;
    GarbageSummary& summary_;
    Descriptor lock_;
    std::optional<update::Manifest> published_;
    ChannelListing listing_;
    std::uint32_t keptBeforePublished_ = 0;
    std::set<std::string> needed_;
};

}  // namespace

bool collectGarbage(const GarbageRequest& request, Console& console, GarbageSummary& summary, std::string& error) {
    summary = {};
    console.beginStep("Looking for what no release needs", 0);
    const bool collected = GarbageCollection(request, summary).run(error);
    console.endStep();
    return collected;
}

}  // namespace vorthmere::publish
