#include "tests/simulation/disk.h"

#include <algorithm>
#include <utility>

#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::uint32_t kRootAttributes = attribute::folder | attribute::hidden | attribute::system;

std::uint64_t sizeOf(const Content& content) {
    return content ? content->size() : 0;
}

}  // namespace

Content contentOf(std::string bytes) {
    return std::make_shared<const std::string>(std::move(bytes));
}

std::size_t Disk::addVolume(Volume volume) {
    Entry root;
    root.attributes = kRootAttributes;
    root.volume = volumes_.size();
    volume.root = static_cast<EntryId>(entries_.size());
    entries_.push_back(std::move(root));
    volumes_.push_back(std::move(volume));
    return volumes_.size() - 1;
}

std::vector<EntryId>::const_iterator Disk::place(EntryId folder, std::string_view key) const {
    const std::vector<EntryId>& children = entries_[folder].children;
    return std::lower_bound(children.begin(), children.end(), key, [this](EntryId id, std::string_view wanted) {
        return std::string_view(entries_[id].key) < wanted;
    });
}

EntryId Disk::child(EntryId folder, std::string_view name) const {
    const FoldedName folded(name);
    const auto at = place(folder, folded.key());
    const bool isThere = at != entries_[folder].children.end() && entries_[*at].key == folded.key();
    return isThere ? *at : kNoEntry;
}

void Disk::link(EntryId id, EntryId folder, std::string_view name) {
    Entry& entry = entries_[id];
    entry.name = name;
    entry.key = keyOf(name);
    entry.parent = folder;
    entry.isNamed = true;
    std::vector<EntryId>& children = entries_[folder].children;
    children.insert(place(folder, entry.key), id);
}

EntryId Disk::create(EntryId folder, std::string_view name, std::uint32_t attributes) {
    const auto id = static_cast<EntryId>(entries_.size());
    Entry& entry = entries_.emplace_back();
    entry.attributes = attributes;
    entry.volume = entries_[folder].volume;
    static const Content empty = contentOf("");
    if (!entry.isFolder()) entry.content = empty;
    link(id, folder, name);
    std::uint64_t& free = volumes_[entry.volume].freeBytes;
    free -= std::min(free, kEntryBytes);
    return id;
}

void Disk::unlink(EntryId id) {
    entries_[id].isNamed = false;
    const EntryId folder = entries_[id].parent;
    entries_[folder].children.erase(place(folder, entries_[id].key));
}

void Disk::rename(EntryId id, EntryId folder, std::string_view name) {
    unlink(id);
    link(id, folder, name);
}

void Disk::forget(EntryId id) {
    Entry& entry = entries_[id];
    volumes_[entry.volume].freeBytes += kEntryBytes + sizeOf(entry.content);
    entry.content.reset();
    entry.flushed.reset();
    entry.isForgotten = true;
}

bool Disk::replaceContent(EntryId id, Content content) {
    Entry& entry = entries_[id];
    std::uint64_t& free = volumes_[entry.volume].freeBytes;
    const std::uint64_t before = sizeOf(entry.content);
    const std::uint64_t after = sizeOf(content);
    if (after > before && after - before > free) return false;
    free = free + before - after;
    entry.content = std::move(content);
    return true;
}

std::string Disk::pathOf(EntryId id) const {
    std::vector<EntryId> way;
    for (; entries_[id].parent != kNoEntry; id = entries_[id].parent)
        way.push_back(id);
    std::string path = volumes_[entries_[id].volume].name;
    if (way.empty()) path.push_back('/');
    for (auto at = way.rbegin(); at != way.rend(); ++at)
        path.append("/").append(entries_[*at].name);
    return path;
}

bool Disk::isBelow(EntryId id, EntryId folder) const {
    while (id != kNoEntry && id != folder)
        id = entries_[id].parent;
    return id == folder;
}

}  // namespace vorthmere::update::simulation
