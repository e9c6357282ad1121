#include <algorithm>
#include <cstring>

#include "tests/simulation/file_system.h"

namespace vorthmere::update::simulation {
namespace {

constexpr unsigned kNotToRemove = access::read | access::write;

/// Puts bytes into a content: in place, or into a copy when the content is shared.
Content withBytes(Content& content, std::size_t position, std::string_view bytes) {
    std::shared_ptr<std::string> own = content.use_count() == 1 ? std::const_pointer_cast<std::string>(content)
                                                                : std::make_shared<std::string>(*content);
    if (own->size() < position) own->resize(position, '\0');
    own->replace(position, std::min(bytes.size(), own->size() - position), bytes);
    return own;
}

}  // namespace

Error FileSystem::handleError(const OpenFile& file) const {
    if (file.entry == kNoEntry) return error::none;
    const Volume& volume = disk.volumes()[disk.at(file.entry).volume];
    return volume.isPresent ? error::none : volume.absentHandle;
}

Error FileSystem::openForItsName(std::string_view path, HandleId& file) {
    const Place place = locate(path, Links::follow);
    if (place.isDevice) {
        file = hold(kNoEntry, access::none, access::all, path);
        files_.back().isDevice = true;
        return error::none;
    }
    if (place.error != error::none) return place.error;
    if (disk.at(place.entry).reparseTag == tag::programAlias) return error::linkCannotBeAccessed;
    if (const Error opening = openingError(place.entry, access::none, access::all); opening != error::none)
        return opening;
    file = hold(place.entry, access::none, access::all, path);
    return error::none;
}

Error FileSystem::open(std::string_view path, unsigned access, unsigned sharing, bool create, HandleId& file) {
    const Place place = locate(path, Links::follow);
    if (place.isDevice) {
        file = hold(kNoEntry, access, sharing, path);
        files_.back().isDevice = true;
        return error::none;
    }
    EntryId entry = place.entry;
    if (entry == kNoEntry && place.error == error::fileNotFound && create) {
        if (const Error making = makeFile(place, entry); making != error::none) return making;
    } else if (place.error != error::none) {
        return place.error;
    } else {
        const Entry& opened = disk.at(entry);
        if (opened.isFolder()) return place.endsInSeparator ? error::pathNotFound : error::accessDenied;
        if (opened.reparseTag == tag::programAlias) return error::linkCannotBeAccessed;
        if ((access & access::write) != 0 && opened.isReadOnly()) return error::accessDenied;
        if (const Error opening = openingError(entry, access, sharing); opening != error::none) return opening;
    }
    file = hold(entry, access, sharing, path);
    return error::none;
}

Error FileSystem::openToRead(std::string_view path, HandleId& file) {
    return open(path, access::read, kNotToRemove, false, file);
}

Error FileSystem::createToWrite(std::string_view path, HandleId& file) {
    const Place place = locate(path, Links::follow);
    if (place.entry != kNoEntry && place.error == error::none) {
        if (const Error overwriting = overwritingError(place.entry, kNotToRemove); overwriting != error::none)
            return overwriting;
        static const Content empty = contentOf("");
        (void)disk.replaceContent(place.entry, empty);
    }
    return open(path, access::write, kNotToRemove, true, file);
}

Error FileSystem::read(HandleId file, char* buffer, std::size_t size, std::size_t& count) {
    count = 0;
    OpenFile* open = findOpen(file);
    if (open == nullptr) return error::invalidHandle;
    if ((open->access & access::read) == 0) return error::accessDenied;
    if (const Error lost = handleError(*open); lost != error::none) return lost;
    if (open->isDevice) return error::none;
    if (isLocked(open->entry, file, open->position, open->position + size)) return error::lockViolation;
    const std::string& content = *disk.at(open->entry).content;
    if (open->position >= content.size()) return error::none;
    count = std::min(size, content.size() - static_cast<std::size_t>(open->position));
    std::memcpy(buffer, content.data() + open->position, count);
    open->position += count;
    return error::none;
}

// A full disk takes what fits and then reports the error.
Error FileSystem::write(HandleId file, std::string_view bytes) {
    OpenFile* open = findOpen(file);
    if (open == nullptr) return error::invalidHandle;
    if ((open->access & access::write) == 0) return error::accessDenied;
    if (const Error lost = handleError(*open); lost != error::none) return lost;
    if (open->isDevice) return error::none;
    if (isLocked(open->entry, file, open->position, open->position + bytes.size())) return error::lockViolation;
    Entry& entry = disk.at(open->entry);
    std::uint64_t& free = disk.volumes()[entry.volume].freeBytes;
    const std::uint64_t size = entry.content->size();
    const std::uint64_t writable = size + free - std::min(size + free, open->position);
    const auto fitting = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), writable));
    entry.content = withBytes(entry.content, static_cast<std::size_t>(open->position), bytes.substr(0, fitting));
    free -= entry.content->size() - size;
    open->position += fitting;
    return fitting == bytes.size() ? error::none : error::diskFull;
}

Error FileSystem::flush(HandleId file) {
    const OpenFile* open = openFile(file);
    if (open == nullptr) return error::invalidHandle;
    if ((open->access & access::write) == 0) return error::accessDenied;
    if (const Error lost = handleError(*open); lost != error::none) return lost;
    if (!open->isDevice) disk.at(open->entry).flushed = disk.at(open->entry).content;
    return error::none;
}

Error FileSystem::flushFile(std::string_view path) {
    HandleId file = 0;
    if (const Error opening = open(path, access::write, kNotToRemove, false, file); opening != error::none)
        return opening;
    const Error flushing = flush(file);
    (void)close(file);
    return flushing;
}

void FileSystem::loseHalf(HandleId file) {
    const OpenFile* open = openFile(file);
    if (open == nullptr || open->isDevice || (open->access & access::write) == 0) return;
    const std::string& content = *disk.at(open->entry).content;
    (void)disk.replaceContent(open->entry, contentOf(content.substr(0, content.size() / 2)));
}

Error FileSystem::lock(HandleId file, std::uint64_t offset, std::uint64_t length) {
    const OpenFile* open = openFile(file);
    if (open == nullptr) return error::invalidHandle;
    if (isLocked(open->entry, file, offset, offset + length)) return error::lockViolation;
    locks_.push_back({file, open->entry, offset, offset + length});
    return error::none;
}

Error FileSystem::map(std::string_view path) {
    const Place place = locate(path, Links::follow);
    if (place.error != error::none) return place.error;
    if (disk.at(place.entry).isFolder()) return error::accessDenied;
    if (const Error opening = openingError(place.entry, access::read, access::all); opening != error::none)
        return opening;
    ++disk.at(place.entry).mappings;
    return error::none;
}

void FileSystem::unmap(std::string_view path) {
    const Place place = locate(path, Links::follow);
    if (place.entry != kNoEntry) disk.at(place.entry).mappings = 0;
}

Error FileSystem::beginImage(std::string_view path, EntryId& image) {
    const Place place = locate(path, Links::follow);
    if (place.error != error::none) return place.error;
    if (disk.at(place.entry).isFolder()) return error::accessDenied;
    constexpr unsigned shared = access::read | access::remove;
    if (const Error opening = openingError(place.entry, access::read, shared); opening != error::none) return opening;
    image = place.entry;
    ++disk.at(image).images;
    return error::none;
}

void FileSystem::endImage(EntryId image) {
    --disk.at(image).images;
}

}  // namespace vorthmere::update::simulation
