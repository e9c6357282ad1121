#include "publisher/packed_part.h"

#include <zlib.h>

#include <stdexcept>

namespace vorthmere::publish {
namespace {

constexpr int kDeflateLevel = 6;
constexpr int kMemoryLevel = 8;

/// A flush between two parts adds less than this.
constexpr std::size_t kFlushBytes = 64;

// The library takes a pointer to mutable bytes but does not write to them.
Bytef* bytesOf(std::span<const char> bytes) {
    return const_cast<Bytef*>(reinterpret_cast<const Bytef*>(bytes.data()));
}

/// One deflate stream without a header, as zip has them.
class Deflation {
public:
    Deflation() {
        if (deflateInit2(&stream_, kDeflateLevel, Z_DEFLATED, -MAX_WBITS, kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::runtime_error("There is no memory left for packing.");
    }
    ~Deflation() {
        deflateEnd(&stream_);
    }
    Deflation(const Deflation&) = delete;
    Deflation& operator=(const Deflation&) = delete;
    Deflation(Deflation&&) = delete;
    Deflation& operator=(Deflation&&) = delete;

    std::vector<char> run(std::span<const char> before, std::span<const char> content, bool isLast) {
        if (!before.empty()) deflateSetDictionary(&stream_, bytesOf(before), static_cast<uInt>(before.size()));
        std::vector<char> packed(deflateBound(&stream_, static_cast<uLong>(content.size())) + kFlushBytes);
        stream_.next_in = bytesOf(content);
        stream_.avail_in = static_cast<uInt>(content.size());
        stream_.next_out = bytesOf(packed);
        stream_.avail_out = static_cast<uInt>(packed.size());
        const int result = deflate(&stream_, isLast ? Z_FINISH : Z_SYNC_FLUSH);
        if (result != (isLast ? Z_STREAM_END : Z_OK)) throw std::runtime_error("A file cannot be deflated.");
        packed.resize(packed.size() - stream_.avail_out);
        return packed;
    }

private:
    z_stream stream_{};
};

PackedPart withFactsOf(std::span<const char> content, std::vector<char> packed) {
    return {std::move(packed), crcOf(0, content), content.size()};
}

}  // namespace

PackedPart storePart(std::span<const char> content) {
    return withFactsOf(content, {content.begin(), content.end()});
}

PackedPart deflatePart(std::span<const char> before, std::span<const char> content, bool isLast) {
    // Not thread_local: on Windows GCC's library frees the memory of a thread's objects before it destroys them.
    return withFactsOf(content, Deflation().run(before, content, isLast));
}

std::uint32_t crcOf(std::uint32_t crc, std::span<const char> bytes) {
    return static_cast<std::uint32_t>(crc32(crc, bytesOf(bytes), static_cast<uInt>(bytes.size())));
}

std::uint32_t joinCrc(std::uint32_t first, const PackedPart& second) {
    return static_cast<std::uint32_t>(crc32_combine(first, second.crc, static_cast<z_off_t>(second.contentSize)));
}

}  // namespace vorthmere::publish
