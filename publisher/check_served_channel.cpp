#include "publisher/check_served_channel.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <system_error>

#include "publisher/channel.h"
#include "publisher/durable_files.h"
#include "publisher/https_fetch.h"
#include "publisher/in_quotes.h"
#include "publisher/parallel_work.h"
#include "publisher/release_texts.h"
#include "update/channel_request.h"
#include "update/limits.h"
#include "update/release_channel.h"
#include "update/sha256_text.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kNotFound = 404;

/// How many numbers below the offered one the check asks for inventories of.
constexpr std::uint32_t kOlderNumbers = 16;

/// A temporary folder, removed at the end.
class FetchedFiles {
public:
    bool create(std::string& error) {
        std::error_code failure;
        const fs::path temporary = fs::temp_directory_path(failure);
        if (!failure) folder_ = temporary / ("kvn-release-check-" + std::to_string(std::random_device()()));
        std::vector<fs::path> made;
        if (!failure) return createFolders(folder_, made, error);
        error = "There is no folder for temporary files: " + failure.message() + ".";
        return false;
    }
    FetchedFiles() = default;
    FetchedFiles(const FetchedFiles&) = delete;
    FetchedFiles& operator=(const FetchedFiles&) = delete;
    FetchedFiles(FetchedFiles&&) = delete;
    FetchedFiles& operator=(FetchedFiles&&) = delete;
    ~FetchedFiles() {
        std::string stays;
        if (!folder_.empty()) static_cast<void>(removeTree(folder_, stays));
    }

    [[nodiscard]] const fs::path& folder() const {
        return folder_;
    }

private:
    fs::path folder_;
};

class ServedChannelCheck {
public:
    ServedChannelCheck(const std::string& address, const fs::path& caFile, bool allowFolderChanges, Console& console)
        : address_(address), caFile_(caFile), allowFolderChanges_(allowFolderChanges), console_(console) {}

    ChannelReport run() {
        std::string error;
        if (!files_.create(error)) return {0, {error}, {}};
        fetchRelease();
        checkUnknownName();
        ChannelReport report = checkChannel(files_.folder(), allowFolderChanges_, console_);
        // A file that could not be fetched has its sentence already.
        std::erase_if(report.faults, [this](const std::string& fault) {
            for (const std::string& name : notFetched_)
                if (fault.ends_with(inQuotes(name) + " is missing.")) return true;
            return false;
        });
        report.faults.insert(report.faults.begin(), faults_.begin(), faults_.end());
        report.notes.insert(report.notes.begin(), notes_.begin(), notes_.end());
        return report;
    }

private:
    void fetchRelease() {
        std::optional<update::Manifest> manifest;
        std::string fault;
        HttpsAnswer answer;
        console_.beginStep("Fetching the manifest", 0);
        fetch(std::string(update::kManifestName), update::kMaxManifestBytes, answer);
        console_.endStep();
        if (answer.status == update::kStatusOk && answer.cacheControl.find("no-store") == std::string::npos)
            faults_.insert(inQuotes(update::kManifestName) +
                           " may be cached on its way: it has no header \"Cache-Control: no-store\".");
        if (!readPublishedManifest(files_.folder(), manifest, fault) || !manifest) return;

        const std::string package = packageNameOf(*manifest);
        const std::string inventory = inventoryNameOf(*manifest);
        console_.beginStep("Fetching the complete package and its inventory", manifest->size);
        fetch(inventory, update::kMaxInventoryBytes, answer);
        fetch(package, manifest->size, answer);
        console_.endStep();
        std::vector<update::InventoryEntry> entries;
        if (!readInventory(files_.folder() / inventory, *manifest, entries, fault)) return;
        fetchOlderInventories(manifest->release);
        fetchObjects(entries);
    }

    /// An inventory that the server does not have is no fault.
    void fetchOlderInventories(std::uint32_t offered) {
        const std::uint32_t count = std::min(kOlderNumbers, offered - 1);
        if (count == 0) return;
        console_.beginStep("Looking for older releases", 0);
        std::string ignored;
        static_cast<void>(forEachInParallel(
            count,
            [&](std::size_t index, std::string&) {
                const std::uint32_t release = offered - 1 - static_cast<std::uint32_t>(index);
                HttpsAnswer answer;
                std::string missing;
                if (store(inventoryName(release), update::kMaxInventoryBytes, answer, missing)) {
                    const std::lock_guard lock(guard_);
                    olderReleases_.insert(release);
                }
                return true;
            },
            ignored));
        console_.endStep();
        noteOlderReleases(offered - count, offered - 1);
    }

    void noteOlderReleases(std::uint32_t first, std::uint32_t last) {
        std::string numbers;
        for (const std::uint32_t release : olderReleases_)
            numbers += (numbers.empty() ? "" : ", ") + std::to_string(release);
        notes_.push_back("Of the releases " + std::to_string(first) + " to " + std::to_string(last) +
                         ", the server has these inventories to compare files and folders with: " +
                         (numbers.empty() ? "none" : numbers) + ".");
    }

    void fetchObjects(const std::vector<update::InventoryEntry>& entries) {
        std::map<std::string, std::uint64_t> sizes;
        std::uint64_t bytes = 0;
        for (const update::InventoryEntry& entry : entries)
            if (sizes.emplace(objectName(entry.sha256), entry.size).second) bytes += entry.size;
        const std::vector<std::pair<std::string, std::uint64_t>> objects(sizes.begin(), sizes.end());
        console_.beginStep("Fetching " + countOf(objects.size(), "object"), bytes);
        std::string ignored;
        static_cast<void>(forEachInParallel(
            objects.size(),
            [&](std::size_t index, std::string&) {
                HttpsAnswer answer;
                fetch(objects[index].first, objects[index].second, answer);
                return true;
            },
            ignored));
        console_.endStep();
    }

    void fetch(const std::string& name, std::uint64_t maxBytes, HttpsAnswer& answer) {
        std::string fault;
        if (!store(name, maxBytes, answer, fault)) refuse(name, fault);
    }

    /// Fetches one file into the folder.
    ///
    /// @return false with a sentence when an updater would not get it; then the file is removed again
    bool store(const std::string& name, std::uint64_t maxBytes, HttpsAnswer& answer, std::string& fault) {
        const bool stored = fetchInto(files_.folder() / name, name, maxBytes, answer, fault);
        std::string stays;
        if (!stored) static_cast<void>(removeFile(files_.folder() / name, stays));
        return stored;
    }

    bool fetchInto(const fs::path& target, const std::string& name, std::uint64_t maxBytes, HttpsAnswer& answer,
                   std::string& fault) {
        OutputFile file;
        const ContentSink keep = [&](std::span<const char> bytes) {
            console_.advance(bytes.size());
            return file.write(bytes, fault);
        };
        if (!file.create(target, fault)) return false;
        std::string broken;
        if (!fetchHttps(address_ + name, caFile_, maxBytes, keep, answer, broken))
            fault = inQuotes(name) + " cannot be fetched: " + (fault.empty() ? broken : fault);
        else if (answer.status != update::kStatusOk)
            fault = inQuotes(name) + " is answered with HTTP " + std::to_string(answer.status) + ".";
        else if (!answer.contentEncoding.empty() && answer.contentEncoding != "identity")
            fault = inQuotes(name) + " is packed by the server (\"Content-Encoding: " + answer.contentEncoding +
                    "\"), which the updater does not unpack.";
        return fault.empty();
    }

    void refuse(const std::string& name, const std::string& fault) {
        const std::lock_guard lock(guard_);
        faults_.insert(fault);
        notFetched_.insert(name);
    }

    void checkUnknownName() {
        HttpsAnswer answer;
        std::string fault;
        const std::string name = objectName(std::string(update::kSha256TextLength, '0'));
        const ContentSink ignore = [](std::span<const char>) { return true; };
        if (fetchHttps(address_ + name, caFile_, update::kMaxManifestBytes, ignore, answer, fault) &&
            answer.status != kNotFound)
            faults_.insert("A file that is not there is answered with HTTP " + std::to_string(answer.status) +
                           " instead of 404.");
    }

    const std::string& address_;
    const fs::path& caFile_;
    const bool allowFolderChanges_;
    Console& console_;
    FetchedFiles files_;
    std::mutex guard_;
    std::set<std::string> faults_;
    std::set<std::string> notFetched_;
    std::set<std::uint32_t> olderReleases_;
    std::vector<std::string> notes_;
};

}  // namespace

ChannelReport checkServedChannel(const std::string& address, const fs::path& caFile, bool allowFolderChanges,
                                 Console& console) {
    return ServedChannelCheck(address, caFile, allowFolderChanges, console).run();
}

}  // namespace vorthmere::publish
