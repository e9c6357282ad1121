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

/// The package of an earlier release. A build copies the entries of unchanged files from it without packing them anew.
class PreviousPackage {
public:
    /// Lists the package.
    ///
    /// @param sha256  the digest that it should have
    /// @param entries what it holds
    /// @return false when it is of no use, for whatever reason
    [[nodiscard]] bool open(const std::filesystem::path& package, std::string_view sha256,
                            const std::vector<update::InventoryEntry>& entries);

    /// Reads the whole package. One with another digest is of no use.
    [[nodiscard]] bool hasItsDigest(const BytesDone& done) const;

    /// The entry of a file with this content; null when there is none.
    ///
    /// @param crc of the content: an entry with another one does not count
    [[nodiscard]] const ZipEntry* find(const update::InventoryEntry& content, std::uint32_t crc) const;

    /// True when the package shows which files are worth deflating. One in which everything is deflated does not: that
    /// may have been done to make it fit.
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
