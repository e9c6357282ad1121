#include "publisher/package_writer.h"

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <stdexcept>

#include "publisher/durable_files.h"
#include "publisher/sha256.h"

namespace vorthmere::publish {
namespace {

constexpr const char* kDeflateLevel = "6";
constexpr unsigned kFileMode = 0644;

struct WrittenArchiveRelease {
    void operator()(archive* zip) const {
        archive_write_free(zip);
    }
    void operator()(archive_entry* entry) const {
        archive_entry_free(entry);
    }
};

/// The archive's bytes on their way to the disk.
struct PackageOutput {
    const std::uint64_t maxBytes;
    OutputFile file = {};
    Sha256 digest = {};
    std::uint64_t size = 0;
    std::string fault = {};
};

la_ssize_t takeBytes(archive*, void* context, const void* bytes, std::size_t count) {
    auto& output = *static_cast<PackageOutput*>(context);
    const std::span<const char> span(static_cast<const char*>(bytes), count);
    output.size += count;
    if (output.size > output.maxBytes)
        output.fault = "The package would be larger than " + std::to_string(output.maxBytes) +
                       " bytes, which is the most that the updater accepts.";
    else if (output.file.write(span, output.fault))
        output.digest.add(span);
    return output.fault.empty() ? static_cast<la_ssize_t>(count) : -1;
}

class PackageWriter {
public:
    explicit PackageWriter(PackageOutput& output) : output_(output), zip_(archive_write_new()) {
        if (!zip_) throw std::runtime_error("There is no memory left for the package.");
    }

    bool open(std::string& error) {
        archive* zip = zip_.get();
        // Output that is no file of the library's own is padded to whole blocks unless the last one may be short.
        const bool opened =
            archive_write_set_format_zip(zip) == ARCHIVE_OK &&
            archive_write_set_format_option(zip, "zip", "compression-level", kDeflateLevel) == ARCHIVE_OK &&
            archive_write_set_bytes_per_block(zip, static_cast<int>(kBlockBytes)) == ARCHIVE_OK &&
            archive_write_set_bytes_in_last_block(zip, 1) == ARCHIVE_OK &&
            archive_write_open(zip, &output_, nullptr, takeBytes, nullptr) == ARCHIVE_OK;
        return opened || fail(error);
    }

    bool add(const ReleaseFile& file, const std::atomic<bool>& stop, const BytesDone& done, std::string& error) {
        // No time is set: the library then writes the format's earliest date, whatever the machine's time zone, and
        // leaves out the field with Unix times.
        const std::unique_ptr<archive_entry, WrittenArchiveRelease> entry(archive_entry_new());
        archive_entry_set_pathname(entry.get(), file.entry.path.c_str());
        archive_entry_set_filetype(entry.get(), AE_IFREG);
        archive_entry_set_perm(entry.get(), kFileMode);
        archive_entry_set_size(entry.get(), static_cast<la_int64_t>(file.entry.size));
        const int chosen = file.worthDeflating ? archive_write_zip_set_compression_deflate(zip_.get())
                                               : archive_write_zip_set_compression_store(zip_.get());
        if (chosen != ARCHIVE_OK || archive_write_header(zip_.get(), entry.get()) != ARCHIVE_OK) return fail(error);
        const ContentSink pack = [&](std::span<const char> bytes) {
            if (stop) return false;
            const la_ssize_t written = archive_write_data(zip_.get(), bytes.data(), bytes.size());
            if (written != static_cast<la_ssize_t>(bytes.size())) return fail(error);
            done(bytes.size());
            return true;
        };
        return readContent(file, pack, error) && (archive_write_finish_entry(zip_.get()) == ARCHIVE_OK || fail(error));
    }

    bool close(std::string& error) {
        return archive_write_close(zip_.get()) == ARCHIVE_OK || fail(error);
    }

private:
    bool fail(std::string& error) {
        const char* reason = archive_error_string(zip_.get());
        error = output_.fault;
        if (error.empty()) error = "The package cannot be written: " + std::string(reason ? reason : "unknown") + ".";
        return false;
    }

    PackageOutput& output_;
    std::unique_ptr<archive, WrittenArchiveRelease> zip_;
};

}  // namespace

bool writePackage(const std::vector<ReleaseFile>& files, const std::filesystem::path& target, std::uint64_t maxBytes,
                  const std::atomic<bool>& stop, PackageFacts& facts, const BytesDone& done, std::string& error) {
    PackageOutput output{maxBytes};
    PackageWriter writer(output);
    if (!output.file.create(target, error) || !writer.open(error)) return false;
    for (const ReleaseFile& file : files)
        if (!writer.add(file, stop, done, error)) return false;
    if (!writer.close(error) || !output.file.finish(error)) return false;
    facts = {output.size, output.digest.finish()};
    return true;
}

}  // namespace vorthmere::publish
