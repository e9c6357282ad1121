#include "publisher/package_writer.h"

#include <algorithm>
#include <optional>

#include "publisher/in_quotes.h"
#include "publisher/ordered_work.h"
#include "publisher/packed_part.h"
#include "publisher/zip_file.h"

namespace vorthmere::publish {
namespace {

/// A part of the package that one thread makes.
struct Job {
    const ReleaseFile* file;
    const ZipEntry* ready;  ///< its entry in the previous package, or null
    PackingMethod method;
    std::uint64_t offset;  ///< into the content, or into the packed bytes of `ready`
    std::size_t size;
    bool isFirst;
    bool isLast;
};

void addJobs(const Job& model, std::uint64_t bytes, std::vector<Job>& jobs) {
    std::uint64_t offset = 0;
    do {
        Job job = model;
        job.offset = offset;
        job.size = static_cast<std::size_t>(std::min<std::uint64_t>(bytes - offset, kBlockBytes));
        job.isFirst = offset == 0;
        offset += job.size;
        job.isLast = offset == bytes;
        jobs.push_back(job);
    } while (offset < bytes);
}

std::vector<Job> jobsFor(const std::vector<ReleaseFile>& files, const PreviousPackage* previous, bool deflatesAll) {
    std::vector<Job> jobs;
    for (const ReleaseFile& file : files) {
        const PackingMethod method = deflatesAll || file.worthDeflating ? PackingMethod::deflate : PackingMethod::store;
        const ZipEntry* ready = previous ? previous->find(file.entry, file.crc) : nullptr;
        // The bytes of a package must not depend on what comes from another one.
        if (ready && ready->method != method) ready = nullptr;
        addJobs({&file, ready, method, 0, 0, false, false}, ready ? ready->packedSize : file.entry.size, jobs);
    }
    return jobs;
}

std::string changed(const ReleaseFile& file) {
    return inQuotes(file.entry.path) + " changed while the release was being built; let nothing write to it.";
}

/// Reads the content of a job and, for deflate, the bytes before it.
///
/// @param before receives the number of bytes in front that do not belong to the job
bool readJob(const Job& job, std::vector<char>& content, std::size_t& before, std::string& error) {
    const ReleaseFile& file = *job.file;
    const std::uint64_t lookBack = job.method == PackingMethod::deflate ? kDeflateWindowBytes : 0;
    before = static_cast<std::size_t>(std::min(job.offset, lookBack));
    const std::uint64_t begin = job.offset - before;
    if (file.source.empty()) {
        const auto first = file.text.begin() + static_cast<std::ptrdiff_t>(begin);
        content.assign(first, first + static_cast<std::ptrdiff_t>(before + job.size));
        return true;
    }
    InputFile input;
    // One byte more would mean that the file has grown.
    content.resize(before + job.size + (job.isLast ? 1 : 0));
    std::size_t count = 0;
    if (!input.open(file.source, error) || !input.readAt(begin, content, count, error)) return false;
    if (count != before + job.size) error = changed(file);
    content.resize(before + job.size);
    return error.empty();
}

bool makePart(const Job& job, const PreviousPackage* previous, PackedPart& part, std::string& error) {
    if (job.ready) {
        part.bytes.resize(job.size);
        return previous->read(*job.ready, job.offset, part.bytes, error);
    }
    std::vector<char> content;
    std::size_t before = 0;
    if (!readJob(job, content, before, error)) return false;
    const std::span<const char> own = std::span<const char>(content).subspan(before);
    part = job.method == PackingMethod::store
               ? storePart(own)
               : deflatePart(std::span<const char>(content).first(before), own, job.isLast);
    return true;
}

/// Puts the parts into the archive in their order.
class PackageWriter {
public:
    PackageWriter(const std::vector<Job>& jobs, const std::atomic<bool>& stop, const BytesDone& done)
        : jobs_(jobs), stop_(stop), done_(done) {}

    bool run(const PackageRequest& request, std::string& error) {
        const bool written = zip_.create(request.target, request.maxBytes, error) &&
                             forEachInOrder(
                                 jobs_.size(),
                                 [&](std::size_t index, PackedPart& part, std::string& fault) {
                                     return makePart(jobs_[index], request.previous, part, fault);
                                 },
                                 [this](std::size_t index, const PackedPart& part, std::string& fault) {
                                     return take(jobs_[index], part, fault);
                                 },
                                 error);
        return written && zip_.finish(error);
    }

    [[nodiscard]] bool isTooLarge() const {
        return zip_.isTooLarge();
    }

private:
    bool take(const Job& job, const PackedPart& part, std::string& error) {
        if (stop_) return false;
        if (job.isFirst) {
            crc_ = 0;
            if (!zip_.beginEntry(job.file->entry.path, job.method, error)) return false;
        }
        if (!zip_.write(part.bytes, error)) return false;
        if (!job.ready) crc_ = joinCrc(crc_, part);
        done_(job.ready ? (job.isLast ? job.ready->size : 0) : job.size);
        return !job.isLast || zip_.endEntry(job.file->entry.size, job.ready ? job.ready->crc : crc_, error);
    }

    const std::vector<Job>& jobs_;
    const std::atomic<bool>& stop_;
    const BytesDone& done_;
    ZipWriter zip_;
    std::uint32_t crc_ = 0;
};

/// Stored files keep their size, so their sum is known beforehand.
bool storedFilesFit(const std::vector<ReleaseFile>& files, std::uint64_t maxBytes) {
    std::uint64_t stored = 0;
    for (const ReleaseFile& file : files)
        if (!file.worthDeflating) stored += file.entry.size;
    return stored <= maxBytes;
}

PathSet readyMade(const std::vector<Job>& jobs) {
    PathSet paths;
    for (const Job& job : jobs)
        if (job.ready) paths.insert(job.file->entry.path);
    return paths;
}

}  // namespace

bool writePackage(const std::vector<ReleaseFile>& files, const PackageRequest& request, const std::atomic<bool>& stop,
                  PathSet& taken, const BytesDone& done, std::string& error) {
    for (bool deflatesAll = !storedFilesFit(files, request.maxBytes);; deflatesAll = true) {
        error.clear();
        const std::vector<Job> jobs = jobsFor(files, request.previous, deflatesAll);
        PackageWriter writer(jobs, stop, done);
        if (writer.run(request, error)) {
            taken = readyMade(jobs);
            return true;
        }
        if (!writer.isTooLarge() || deflatesAll) return false;
    }
}

}  // namespace vorthmere::publish
