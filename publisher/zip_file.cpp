#include "publisher/zip_file.h"

#include <unzip.h>
#include <zip.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <memory>

#include "publisher/release_content.h"

namespace vorthmere::publish {
namespace {

constexpr int kStatedDeflateLevel = 6;

// Made by a Unix system, format 2.0; a regular file that everybody may read; 1 January 1980.
constexpr uLong kMadeBy = 3U << 8 | 20U;
constexpr uLong kAttributes = 0100644U << 16;
constexpr uLong kEarliestDate = 1U << 21 | 1U << 16;
constexpr uLong kEncrypted = 1;

ZipWriter::Output& outputOf(voidpf stream) {
    return *static_cast<ZipWriter::Output*>(stream);
}

voidpf openStream(voidpf context, const void*, int) {
    return context;
}

int closeStream(voidpf, voidpf) {
    return 0;
}

int noError(voidpf, voidpf) {
    return 0;
}

uLong writeOutput(voidpf, voidpf stream, const void* bytes, uLong count) {
    return outputOf(stream).put({static_cast<const char*>(bytes), count}) ? count : 0;
}

uLong readOutput(voidpf, voidpf, void*, uLong) {
    return 0;
}

ZPOS64_T tellOutput(voidpf, voidpf stream) {
    return outputOf(stream).position;
}

long seekOutput(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
    ZipWriter::Output& output = outputOf(stream);
    const std::uint64_t end = output.flushed + output.pending.size();
    const std::uint64_t from = origin == ZLIB_FILEFUNC_SEEK_CUR   ? output.position
                               : origin == ZLIB_FILEFUNC_SEEK_END ? end
                                                                  : 0;
    if (from + offset > end) return -1;
    output.position = from + offset;
    return 0;
}

/// The input of the library's calls. The library reads some bytes at a time, so the block around them is kept.
struct Input {
    InputFile& file;
    std::uint64_t size = 0;
    std::uint64_t position = 0;
    std::uint64_t blockBegin = 0;
    std::vector<char> block = {};
};

Input& inputOf(voidpf stream) {
    return *static_cast<Input*>(stream);
}

/// The bytes from the position on that are in memory; reads the next block when there are none. Empty at the file's end
/// and after a failure.
std::span<const char> bytesAhead(Input& input) {
    constexpr std::size_t kInputBlockBytes = 4096;
    if (input.position < input.blockBegin || input.position >= input.blockBegin + input.block.size()) {
        std::size_t read = 0;
        std::string unreadable;
        input.block.resize(kInputBlockBytes);
        if (!input.file.readAt(input.position, input.block, read, unreadable)) read = 0;
        input.block.resize(read);
        input.blockBegin = input.position;
    }
    return std::span<const char>(input.block).subspan(static_cast<std::size_t>(input.position - input.blockBegin));
}

uLong readInput(voidpf, voidpf stream, void* bytes, uLong count) {
    Input& input = inputOf(stream);
    const std::span<char> wanted(static_cast<char*>(bytes), count);
    std::size_t copied = 0;
    while (copied < wanted.size()) {
        const std::span<const char> ahead = bytesAhead(input);
        if (ahead.empty()) break;
        const std::size_t part = std::min(ahead.size(), wanted.size() - copied);
        std::copy_n(ahead.begin(), part, wanted.begin() + static_cast<std::ptrdiff_t>(copied));
        copied += part;
        input.position += part;
    }
    return static_cast<uLong>(copied);
}

uLong writeInput(voidpf, voidpf, const void*, uLong) {
    return 0;
}

ZPOS64_T tellInput(voidpf, voidpf stream) {
    return inputOf(stream).position;
}

long seekInput(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
    Input& input = inputOf(stream);
    const std::uint64_t from = origin == ZLIB_FILEFUNC_SEEK_CUR   ? input.position
                               : origin == ZLIB_FILEFUNC_SEEK_END ? input.size
                                                                  : 0;
    input.position = from + offset;
    return 0;
}

struct ArchiveRelease {
    void operator()(void* archive) const {
        unzClose(archive);
    }
};

bool readEntry(unzFile archive, ZipEntry& entry, bool& isUsable) {
    unz_file_info64 info{};
    // The longest name in the format.
    std::array<char, 65536> name{};
    int method = 0;
    int level = 0;
    if (unzGetCurrentFileInfo64(archive, &info, name.data(), name.size() - 1, nullptr, 0, nullptr, 0) != UNZ_OK ||
        unzOpenCurrentFile2(archive, &method, &level, 1) != UNZ_OK)
        return false;
    isUsable = (info.flag & kEncrypted) == 0 && (method == 0 || method == Z_DEFLATED);
    entry = {name.data(),
             method == 0 ? PackingMethod::store : PackingMethod::deflate,
             static_cast<std::uint32_t>(info.crc),
             info.uncompressed_size,
             info.compressed_size,
             unzGetCurrentFileZStreamPos64(archive)};
    unzCloseCurrentFile(archive);
    return true;
}

}  // namespace

bool ZipWriter::Output::put(std::span<const char> bytes) {
    if (position + bytes.size() > maxBytes) {
        isTooLarge = true;
        fault = "The package would be larger than " + std::to_string(maxBytes) +
                " bytes, which is the most that the updater accepts.";
        return false;
    }
    if (position < flushed) {
        if (!file.writeAt(position, bytes, fault)) return false;
        position += bytes.size();
        return true;
    }
    const auto place = static_cast<std::size_t>(position - flushed);
    pending.resize(std::max(pending.size(), place + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), pending.begin() + static_cast<std::ptrdiff_t>(place));
    position += bytes.size();
    return pending.size() < kBlockBytes || flush();
}

bool ZipWriter::Output::flush() {
    if (!file.write(pending, fault)) return false;
    flushed += pending.size();
    pending.clear();
    return true;
}

ZipWriter::~ZipWriter() {
    if (zip_) zipClose(zip_, nullptr);
}

bool ZipWriter::create(const std::filesystem::path& target, std::uint64_t maxBytes, std::string& error) {
    output_.maxBytes = maxBytes;
    if (!output_.file.create(target, error)) return false;
    zlib_filefunc64_def calls = {openStream, readOutput,  writeOutput, tellOutput,
                                 seekOutput, closeStream, noError,     &output_};
    zip_ = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &calls);
    return zip_ || fail(error);
}

bool ZipWriter::beginEntry(const std::string& name, PackingMethod method, std::string& error) {
    zip_fileinfo info{};
    info.dosDate = kEarliestDate;
    info.external_fa = kAttributes;
    const bool deflates = method == PackingMethod::deflate;
    constexpr int kReadyMade = 1;
    constexpr int kSmallerThan4GiB = 0;
    return zipOpenNewFileInZip4_64(zip_, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                                   deflates ? Z_DEFLATED : 0, deflates ? kStatedDeflateLevel : 0, kReadyMade,
                                   -MAX_WBITS, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0, kMadeBy, 0,
                                   kSmallerThan4GiB) == ZIP_OK ||
           fail(error);
}

bool ZipWriter::write(std::span<const char> packed, std::string& error) {
    return zipWriteInFileInZip(zip_, packed.data(), static_cast<unsigned>(packed.size())) == ZIP_OK || fail(error);
}

bool ZipWriter::endEntry(std::uint64_t size, std::uint32_t crc, std::string& error) {
    return zipCloseFileInZipRaw64(zip_, size, crc) == ZIP_OK || fail(error);
}

bool ZipWriter::finish(std::string& error) {
    const int closed = zipClose(zip_, nullptr);
    zip_ = nullptr;
    if (closed != ZIP_OK || !output_.flush()) return fail(error);
    return output_.file.finish(error);
}

bool ZipWriter::fail(std::string& error) const {
    error = output_.fault.empty() ? "The package cannot be written." : output_.fault;
    return false;
}

bool listZip(InputFile& archive, std::uint64_t archiveBytes, std::vector<ZipEntry>& entries) {
    Input input{archive, archiveBytes};
    zlib_filefunc64_def calls = {openStream, readInput, writeInput, tellInput, seekInput, closeStream, noError, &input};
    const std::unique_ptr<void, ArchiveRelease> zip(unzOpen2_64("", &calls));
    if (!zip) return false;
    entries.clear();
    int found = unzGoToFirstFile(zip.get());
    for (; found == UNZ_OK; found = unzGoToNextFile(zip.get())) {
        ZipEntry entry;
        bool isUsable = false;
        if (!readEntry(zip.get(), entry, isUsable)) return false;
        if (isUsable) entries.push_back(std::move(entry));
    }
    return found == UNZ_END_OF_LIST_OF_FILE;
}

}  // namespace vorthmere::publish
