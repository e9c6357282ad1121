#include "publisher/package_reader.h"

#include <archive.h>
#include <archive_entry.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string_view>
#include <thread>

#include "publisher/channel_file.h"
#include "publisher/durable_files.h"
#include "publisher/in_quotes.h"
#include "publisher/interruption.h"
#include "publisher/parallel_work.h"
#include "publisher/release_texts.h"
#include "publisher/sha256.h"
#include "update/archive_listing.h"
#include "update/limits.h"

namespace vorthmere::publish {
namespace {

struct ReadArchiveRelease {
    void operator()(archive* zip) const {
        archive_read_free(zip);
    }
};

/// The input of the library.
struct PackageInput {
    InputFile file;
    std::uint64_t size = 0;
    std::uint64_t position = 0;
    std::vector<char> block;
};

la_ssize_t readBlock(archive*, void* context, const void** bytes) {
    auto& input = *static_cast<PackageInput*>(context);
    std::size_t count = 0;
    std::string unreadable;
    if (!input.file.readAt(input.position, input.block, count, unreadable)) return ARCHIVE_FATAL;
    input.position += count;
    *bytes = input.block.data();
    return static_cast<la_ssize_t>(count);
}

la_int64_t seekTo(archive*, void* context, la_int64_t offset, int origin) {
    auto& input = *static_cast<PackageInput*>(context);
    const std::uint64_t from = origin == SEEK_END ? input.size : origin == SEEK_CUR ? input.position : 0;
    input.position = from + static_cast<std::uint64_t>(offset);
    return static_cast<la_int64_t>(input.position);
}

class PackageReader {
public:
    bool open(const std::filesystem::path& package, std::string& error) {
        // The library jumps from entry to entry, and most entries are smaller than a block for copying.
        constexpr std::size_t kReadBytes = 65536;
        input_.block.resize(kReadBytes);
        input_.size = lookAtFile(package).size;
        if (!input_.file.open(package, error)) return false;
        zip_.reset(archive_read_new());
        archive* const zip = zip_.get();
        const bool opened = zip && archive_read_support_format_zip_seekable(zip) == ARCHIVE_OK &&
                            archive_read_set_read_callback(zip, readBlock) == ARCHIVE_OK &&
                            archive_read_set_seek_callback(zip, seekTo) == ARCHIVE_OK &&
                            archive_read_set_callback_data(zip, &input_) == ARCHIVE_OK &&
                            archive_read_open1(zip) == ARCHIVE_OK;
        return opened || fail(error);
    }

    /// @return false on a failure; true with the next entry, or with none at the end
    bool next(archive_entry*& entry, std::string& error) {
        const int result = archive_read_next_header(zip_.get(), &entry);
        if (result == ARCHIVE_EOF) entry = nullptr;
        return result == ARCHIVE_OK || result == ARCHIVE_EOF || fail(error);
    }

    /// Unpacks the current entry without keeping it, at most one block more than `maxBytes`.
    bool measure(std::uint64_t maxBytes, std::uint64_t& size, std::string& sha256, const BytesDone& done,
                 std::string& error) {
        Sha256 digest;
        size = 0;
        std::vector<char> block(kBlockBytes);
        la_ssize_t count = 0;
        while (size <= maxBytes && (count = archive_read_data(zip_.get(), block.data(), block.size())) > 0) {
            if (isInterrupted()) {
                error = interruptionSentence();
                return false;
            }
            const std::span<const char> bytes(block.data(), static_cast<std::size_t>(count));
            digest.add(bytes);
            size += bytes.size();
            done(bytes.size());
        }
        sha256 = digest.finish();
        return count >= 0 || fail(error);
    }

private:
    bool fail(std::string& error) {
        const char* reason = zip_ ? archive_error_string(zip_.get()) : nullptr;
        error = "The package cannot be unpacked: " + std::string(reason ? reason : "unknown reason") + ".";
        return false;
    }

    PackageInput input_;
    std::unique_ptr<archive, ReadArchiveRelease> zip_;
};

using Expected = std::map<std::string, const update::InventoryEntry*, std::less<>>;
using Known = std::set<std::string, std::less<>>;

bool listingIsAccepted(const std::filesystem::path& package, const Expected& expected, std::string& error) {
    PackageReader reader;
    archive_entry* entry = nullptr;
    if (!reader.open(package, error)) return false;
    std::vector<std::string> names;
    Expected missing = expected;
    while (names.size() <= update::kMaxArchiveEntries && reader.next(entry, error) && entry) {
        const char* const name = archive_entry_pathname(entry);
        names.emplace_back(name ? name : "");
        if (archive_entry_filetype(entry) == AE_IFDIR) continue;
        if (archive_entry_filetype(entry) != AE_IFREG) {
            error = inQuotes(names.back()) + " in the package is neither a file nor a folder.";
            return false;
        }
        if (missing.erase(names.back()) == 0) {
            error = inQuotes(names.back()) + " in the package is not in the file inventory, or there twice.";
            return false;
        }
    }
    if (!error.empty()) return false;

    std::wstring fault;
    const std::string listing = listingText(names);
    if (listing.size() > update::kMaxArchiveToolOutputBytes) {
        error = "The listing of the package has more than " + std::to_string(update::kMaxArchiveToolOutputBytes) +
                " bytes.";
    } else if (!update::checkArchiveListing(listing, fault)) {
        error.assign(fault.begin(), fault.end());
    } else if (!missing.empty()) {
        error = inQuotes(missing.begin()->first) + " is missing in the package.";
    }
    return error.empty();
}

/// Unpacks every `stride`-th entry, from the one numbered `first` on. A reader goes through an archive entry by entry, so
/// several readers share the work.
bool contentsMatch(const std::filesystem::path& package, const Expected& expected, const Known& known,
                   std::size_t first, std::size_t stride, const BytesDone& done, std::string& error) {
    PackageReader reader;
    archive_entry* entry = nullptr;
    if (!reader.open(package, error)) return false;
    for (std::size_t number = 0; reader.next(entry, error) && entry; ++number) {
        if (number % stride != first || archive_entry_filetype(entry) != AE_IFREG) continue;
        const update::InventoryEntry& wanted = *expected.at(archive_entry_pathname(entry));
        if (known.contains(wanted.path)) {
            done(wanted.size);
            continue;
        }
        std::uint64_t size = 0;
        std::string sha256;
        if (!reader.measure(wanted.size, size, sha256, done, error)) return false;
        if (size == wanted.size && sha256 == wanted.sha256) continue;
        error = inQuotes(wanted.path) + " in the package has other content than the file inventory says.";
        return false;
    }
    return error.empty();
}

bool readFacts(const std::filesystem::path& package, PackageFacts& facts, std::string& error) {
    Sha256 digest;
    facts = {};
    const ContentSink hash = [&](std::span<const char> bytes) {
        digest.add(bytes);
        facts.size += bytes.size();
        return true;
    };
    if (!readFile(package, hash, error)) return false;
    facts.sha256 = digest.finish();
    return true;
}

}  // namespace

bool verifyPackage(const std::filesystem::path& package, const std::vector<update::InventoryEntry>& entries,
                   const Known& known, PackageFacts& facts, const BytesDone& done, std::string& error) {
    Expected expected;
    for (const update::InventoryEntry& entry : entries)
        expected.emplace(entry.path, &entry);
    if (!listingIsAccepted(package, expected, error)) return false;
    const std::size_t readers = std::max(1U, std::thread::hardware_concurrency());
    return forEachInParallel(
        readers + 1,
        [&](std::size_t job, std::string& fault) {
            return job == 0 ? readFacts(package, facts, fault)
                            : contentsMatch(package, expected, known, job - 1, readers, done, fault);
        },
        error);
}

}  // namespace vorthmere::publish
