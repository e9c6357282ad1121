#include "publisher/previous_package.h"

#include "publisher/channel_file.h"
#include "publisher/in_quotes.h"

namespace vorthmere::publish {

bool PreviousPackage::open(const std::filesystem::path& package, std::string_view sha256,
                           const std::vector<update::InventoryEntry>& entries) {
    const ChannelFile found = lookAtFile(package);
    std::string unreadable;
    std::vector<ZipEntry> packed;
    if (!found.isRight() || !file_.open(package, unreadable) || !listZip(file_, found.size, packed)) return false;
    path_ = package;
    sha256_ = sha256;
    size_ = found.size;
    std::map<std::string_view, const ZipEntry*> packedByName;
    for (const ZipEntry& entry : packed)
        packedByName.emplace(entry.name, &entry);
    for (const update::InventoryEntry& entry : entries) {
        const auto known = packedByName.find(entry.path);
        if (known == packedByName.end() || known->second->size != entry.size) continue;
        hasStoredFile_ = hasStoredFile_ || (entry.size != 0 && known->second->method == PackingMethod::store);
        entriesByDigest_.emplace(entry.sha256, *known->second);
    }
    return true;
}

bool PreviousPackage::hasItsDigest(const BytesDone& done) const {
    return compareFile(path_, size_, sha256_, done).isRight();
}

const ZipEntry* PreviousPackage::find(const update::InventoryEntry& content, std::uint32_t crc) const {
    const auto found = entriesByDigest_.find(content.sha256);
    if (found == entriesByDigest_.end()) return nullptr;
    const ZipEntry& entry = found->second;
    return entry.size == content.size && entry.crc == crc ? &entry : nullptr;
}

bool PreviousPackage::read(const ZipEntry& entry, std::uint64_t offset, std::span<char> packed,
                           std::string& error) const {
    std::size_t count = 0;
    if (!file_.readAt(entry.position + offset, packed, count, error)) return false;
    if (count == packed.size()) return true;
    error = "The package of the previous release changed while " + inQuotes(entry.name) + " was taken from it.";
    return false;
}

}  // namespace vorthmere::publish
