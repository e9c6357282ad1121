#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "publisher/durable_files.h"
#include "publisher/release_content.h"
#include "publisher/zip_file.h"
#include "update/file_inventory.h"

namespace vorthmere::publish {

/// The package of an earlier release, from which the entries of unchanged files are taken as they are packed.
class PreviousPackage {
public:
    /// Lists the package.
    ///
    /// @param sha256  that it should have
    /// @param entries what it holds
    /// @return false when nothing can be taken from it, for whatever reason
    [[nodiscard]] bool open(const std::filesystem::path& package, std::string_view sha256,
                            const std::vector<update::InventoryEntry>& entries);

    /// Reads the whole package. Nothing may be taken from one that has another digest than it should have.
    [[nodiscard]] bool hasItsDigest(const BytesDone& done) const;

    /// The entry of a file with this content; null when there is none.
    ///
    /// @param crc of the content: an entry that was packed from something else is not taken
    [[nodiscard]] const ZipEntry* find(const update::InventoryEntry& content, std::uint32_t crc) const;

    /// True when the package shows of each of its files whether deflating it is worth it: not one in which everything
    /// is deflated, which may have been done to make it fit.
    [[nodiscard]] bool tellsWhatIsWorthDeflating() const {
        return hasStoredFile_;
    }

    /// Reads packed bytes of an entry.
    ///
    /// @param offset into the packed bytes
    [[nodiscard]] bool read(const ZipEntry& entry, std::uint64_t offset, std::span<char> packed,
                            std::string& error) const;

    /// Bytes of the whole package.
    [[nodiscard]] std::uint64_t size() const {
        return size_;
    }

private:
    std::filesystem::path path_;
    std::string sha256_;
    std::uint64_t size_ = 0;
    bool hasStoredFile_ = false;
    mutable InputFile file_;
    std::map<std::string, ZipEntry, std::less<>> entriesByDigest_;
};

}  // namespace vorthmere::publish
