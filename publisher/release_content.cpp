#include "publisher/release_content.h"

#include "publisher/durable_files.h"
#include "publisher/in_quotes.h"
#include "publisher/interruption.h"

namespace vorthmere::publish {

bool readFile(const std::filesystem::path& path, const ContentSink& sink, std::string& error) {
    InputFile file;
    if (!file.open(path, error)) return false;
    std::vector<char> block(kBlockBytes);
    std::size_t count = block.size();
    for (std::uint64_t position = 0; count == block.size(); position += count) {
        if (isInterrupted()) {
            error = interruptionSentence();
            return false;
        }
        if (!file.readAt(position, block, count, error)) return false;
        if (count != 0 && !sink({block.data(), count})) return false;
    }
    return true;
}

bool readContent(const ReleaseFile& file, const ContentSink& sink, std::string& error) {
    if (file.source.empty()) return sink({file.text.data(), file.text.size()});
    std::uint64_t size = 0;
    const ContentSink counted = [&](std::span<const char> bytes) {
        size += bytes.size();
        return size <= file.entry.size && sink(bytes);
    };
    const bool read = readFile(file.source, counted, error);
    if (read && size == file.entry.size) return true;
    if (error.empty() && (read || size > file.entry.size))
        error = inQuotes(file.entry.path) + " changed while the release was being built; let nothing write to it.";
    return false;
}

std::vector<update::InventoryEntry> inventoryOf(const std::vector<ReleaseFile>& files) {
    std::vector<update::InventoryEntry> entries;
    entries.reserve(files.size());
    for (const ReleaseFile& file : files)
        entries.push_back(file.entry);
    return entries;
}

std::uint64_t totalBytes(const std::vector<ReleaseFile>& files) {
    std::uint64_t total = 0;
    for (const ReleaseFile& file : files)
        total += file.entry.size;
    return total;
}

}  // namespace vorthmere::publish
