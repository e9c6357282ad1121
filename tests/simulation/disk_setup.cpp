#include <algorithm>
#include <stdexcept>

#include "tests/simulation/file_system.h"
#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {

bool operator==(const EntryView& left, const EntryView& right) {
    const bool sameContent =
        left.content == right.content || (left.content && right.content && *left.content == *right.content);
    return sameContent && left.path == right.path && left.attributes == right.attributes &&
           left.reparseTag == right.reparseTag && left.linkTarget == right.linkTarget;
}

/// The folder of a path, made with all its parents.
EntryId FileSystem::folderFor(std::string_view path, std::string& name) {
    const FullPath full = fullPathOf(path, "C:/");
    const std::size_t volume = volumeNamed(std::string_view(full.text).substr(0, full.volumeLength));
    if (volume == disk.volumes().size()) throw std::logic_error("the machine has no volume for " + full.text);
    std::string_view rest = std::string_view(full.text).substr(std::min(full.volumeLength + 1, full.text.size()));
    EntryId folder = disk.volumes()[volume].root;
    while (rest.find('/') != std::string_view::npos) {
        const std::string_view component = takeComponent(rest);
        const EntryId next = disk.child(folder, component);
        folder = next == kNoEntry ? disk.create(folder, component, attribute::folder) : next;
    }
    name = rest;
    return folder;
}

EntryId FileSystem::put(std::string_view path, std::uint32_t attributes) {
    std::string name;
    const EntryId folder = folderFor(path, name);
    const EntryId old = disk.child(folder, name);
    const bool isSameKind = old != kNoEntry && disk.at(old).isFolder() == ((attributes & attribute::folder) != 0);
    if (old != kNoEntry && !isSameKind) erase(path);
    const EntryId entry = isSameKind ? old : disk.create(folder, name, attributes);
    disk.at(entry).attributes = attributes;
    return entry;
}

void FileSystem::putFolder(std::string_view path, std::uint32_t attributes) {
    put(path, attributes | attribute::folder);
}

void FileSystem::putFile(std::string_view path, Content content, std::uint32_t attributes) {
    const EntryId file = put(path, attributes);
    if (!disk.replaceContent(file, content)) throw std::logic_error("no room for " + std::string(path));
    disk.at(file).flushed = std::move(content);
}

void FileSystem::putReparsePoint(std::string_view path, std::uint32_t reparseTag, std::string_view target,
                                 bool isFolder) {
    const std::uint32_t kind = isFolder ? attribute::folder : attribute::archive;
    const EntryId entry = put(path, kind | attribute::reparsePoint);
    disk.at(entry).reparseTag = reparseTag;
    disk.at(entry).linkTarget = target;
    disk.at(entry).flushed = disk.at(entry).content;
}

void FileSystem::erase(std::string_view path) {
    const Place place = locate(path, Links::keep);
    if (place.entry == kNoEntry) return;
    const std::vector<EntryId> children = disk.at(place.entry).children;
    for (const EntryId child : children)
        erase(disk.pathOf(child));
    disk.unlink(place.entry);
    disk.forget(place.entry);
}

void FileSystem::refuse(std::string_view path, Error refusal) {
    const Place place = locate(path, Links::keep);
    if (place.entry == kNoEntry) throw std::logic_error("nothing to refuse at " + std::string(path));
    disk.at(place.entry).refusal = refusal;
}

EntryView FileSystem::viewOf(EntryId id) const {
    const Entry& entry = disk.at(id);
    const bool isFlushed = entry.content == entry.flushed;
    return {disk.pathOf(id), entry.attributes,      entry.reparseTag, entry.linkTarget,
            entry.content,   entry.isDeletePending, isFlushed};
}

EntryId FileSystem::entryOf(std::string_view path) const {
    return locate(path, Links::keep).entry;
}

std::optional<EntryView> FileSystem::find(std::string_view path) const {
    const Place place = locate(path, Links::keep);
    if (place.entry == kNoEntry) return std::nullopt;
    return viewOf(place.entry);
}

void FileSystem::collect(EntryId folder, std::vector<EntryView>& views) const {
    for (const EntryId child : disk.at(folder).children) {
        views.push_back(viewOf(child));
        collect(child, views);
    }
}

std::vector<EntryView> FileSystem::entriesBelow(std::string_view folder) const {
    std::vector<EntryView> views;
    const Place place = locate(folder, Links::keep);
    if (place.entry != kNoEntry) collect(place.entry, views);
    return views;
}

std::vector<EntryView> FileSystem::entries() const {
    std::vector<EntryView> views;
    for (const Volume& volume : disk.volumes())
        collect(volume.root, views);
    return views;
}

Volume& FileSystem::volumeOf(std::string_view path) {
    const FullPath full = fullPathOf(path, "C:/");
    const std::size_t volume = volumeNamed(std::string_view(full.text).substr(0, full.volumeLength));
    if (volume == disk.volumes().size()) throw std::logic_error("the machine has no volume for " + full.text);
    return disk.volumes()[volume];
}

void FileSystem::flushAll() {
    for (EntryId id = 0; id < disk.count(); ++id)
        disk.at(id).flushed = disk.at(id).content;
}

std::vector<std::string> FileSystem::unflushed() const {
    std::vector<std::string> paths;
    for (const EntryView& view : entries())
        if (!view.isFlushed) paths.push_back(view.path);
    return paths;
}

// A file that was deleted but held is gone, too: its name was on the disk, but its deletion is in the journal.
void FileSystem::losePower(const std::vector<Fate>& fates) {
    while (!files_.empty())
        (void)close(files_.back().id);
    currentFolders_.clear();
    const std::vector<std::string> paths = unflushed();
    for (std::size_t n = 0; n < paths.size() && !fates.empty(); ++n) {
        const EntryId file = locate(paths[n], Links::keep).entry;
        // A volume that is away lost its power when it was taken away.
        if (file == kNoEntry) continue;
        const Entry& entry = disk.at(file);
        const Fate fate = fates[n % fates.size()];
        if (fate == Fate::zero) (void)disk.replaceContent(file, contentOf(std::string(entry.content->size(), '\0')));
        if (fate == Fate::drop) (void)disk.replaceContent(file, entry.flushed ? entry.flushed : contentOf(""));
    }
    for (EntryId id = 0; id < disk.count(); ++id)
        disk.at(id).mappings = disk.at(id).images = 0;
    flushAll();
}

}  // namespace vorthmere::update::simulation
