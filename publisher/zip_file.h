#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "publisher/durable_files.h"

namespace vorthmere::publish {

enum class PackingMethod { store, deflate };

/// Writes a zip archive from entries that are packed already.
class ZipWriter {
public:
    ZipWriter() = default;
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;
    ZipWriter(ZipWriter&&) = delete;
    ZipWriter& operator=(ZipWriter&&) = delete;

    /// @param maxBytes largest allowed archive
    [[nodiscard]] bool create(const std::filesystem::path& target, std::uint64_t maxBytes, std::string& error);

    /// Begins an entry for a file that everybody may read, with the format's earliest date.
    [[nodiscard]] bool beginEntry(const std::string& name, PackingMethod method, std::string& error);

    [[nodiscard]] bool write(std::span<const char> packed, std::string& error);

    /// @param size, crc of the content
    [[nodiscard]] bool endEntry(std::uint64_t size, std::uint32_t crc, std::string& error);

    /// Returns once the archive is complete and on the disk.
    [[nodiscard]] bool finish(std::string& error);

    /// True when the archive would be larger than allowed.
    [[nodiscard]] bool isTooLarge() const {
        return output_.isTooLarge;
    }

    /// The output of the library's calls. The last bytes stay in memory until they fill a block, so that the many small
    /// fields of the format, some completed later, do not each cost a system call.
    struct Output {
        OutputFile file;
        std::uint64_t maxBytes = 0;
        bool isTooLarge = false;
        std::string fault;
        std::uint64_t position = 0;
        std::uint64_t flushed = 0;  ///< bytes before `pending`
        std::vector<char> pending;

        bool put(std::span<const char> bytes);
        bool flush();
    };

private:
    bool fail(std::string& error) const;

    Output output_;
    void* zip_ = nullptr;
};

/// An entry of a zip archive.
struct ZipEntry {
    std::string name;
    PackingMethod method = PackingMethod::store;
    std::uint32_t crc = 0;
    std::uint64_t size = 0;        ///< bytes of the content
    std::uint64_t packedSize = 0;  ///< bytes in the archive
    std::uint64_t position = 0;    ///< where in the archive the packed bytes begin
};

/// Lists the entries of a zip archive that are stored or deflated, and not encrypted.
///
/// @return false when it is no zip archive
[[nodiscard]] bool listZip(InputFile& archive, std::uint64_t archiveBytes, std::vector<ZipEntry>& entries);

}  // namespace vorthmere::publish
