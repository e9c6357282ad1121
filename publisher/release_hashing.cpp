#include "publisher/release_hashing.h"

#include "publisher/deflate_trial.h"
#include "publisher/packed_part.h"
#include "publisher/parallel_work.h"
#include "publisher/sha256.h"

namespace vorthmere::publish {
namespace {

/// @param trial also takes the content; may be null
bool hashFile(ReleaseFile& file, DeflateTrial* trial, const BytesDone& done, std::string& error) {
    Sha256 digest;
    file.crc = 0;
    const ContentSink hash = [&](std::span<const char> bytes) {
        digest.add(bytes);
        file.crc = crcOf(file.crc, bytes);
        if (trial) trial->add(bytes);
        done(bytes.size());
        return true;
    };
    if (!readContent(file, hash, error)) return false;
    file.entry.sha256 = digest.finish();
    return true;
}

bool hashAndTry(ReleaseFile& file, const BytesDone& done, std::string& error) {
    DeflateTrial trial;
    if (!hashFile(file, &trial, done, error)) return false;
    file.worthDeflating = trial.isWorthIt();
    return true;
}

/// The entry in the previous package shows whether deflating is worth it. A trial takes as long as the digest.
bool hashAndCompare(ReleaseFile& file, const PreviousPackage& previous, const BytesDone& done, std::string& error) {
    if (!hashFile(file, nullptr, done, error)) return false;
    const ZipEntry* const packed = previous.find(file.entry, file.crc);
    if (!packed)
        return hashAndTry(
            file, [](std::uint64_t) {}, error);
    file.worthDeflating = packed->method == PackingMethod::deflate;
    return true;
}

}  // namespace

bool hashReleaseFiles(std::vector<ReleaseFile>& files, std::optional<PreviousPackage>& previous, Console& console,
                      std::string& error) {
    const BytesDone done = [&console](std::uint64_t count) { console.advance(count); };
    const PreviousPackage* const package = previous ? &*previous : nullptr;
    console.beginStep("Reading " + countOf(files.size(), "file"), totalBytes(files) + (package ? package->size() : 0));
    bool isOfUse = true;
    // The package comes first because it takes longer than any file.
    bool hashed = forEachInParallel(
        files.size() + 1,
        [&](std::size_t index, std::string& fault) {
            if (index == 0) {
                isOfUse = !package || package->hasItsDigest(done);
                return true;
            }
            ReleaseFile& file = files[index - 1];
            return package && package->tellsWhatIsWorthDeflating() ? hashAndCompare(file, *package, done, fault)
                                                                   : hashAndTry(file, done, fault);
        },
        error);
    if (hashed && !isOfUse) {
        previous.reset();
        hashed = forEachInParallel(
            files.size(), [&](std::size_t index, std::string& fault) { return hashAndTry(files[index], done, fault); },
            error);
    }
    console.endStep();
    return hashed;
}

}  // namespace vorthmere::publish
