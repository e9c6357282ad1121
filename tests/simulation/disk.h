#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

/// A file's bytes, shared by all copies of a machine and by all files that were copied from each other.
using Content = std::shared_ptr<const std::string>;

[[nodiscard]] Content contentOf(std::string bytes);

using EntryId = std::uint32_t;
inline constexpr EntryId kNoEntry = 0xFFFFFFFF;

/// A file, a folder or a reparse point. It outlives its name while somebody holds it open.
struct Entry {
    std::string name;  ///< as written; UTF-8
    std::string key;   ///< the name as it is looked up
    EntryId parent = kNoEntry;
    std::uint32_t attributes = 0;
    std::uint32_t reparseTag = tag::none;
    std::string linkTarget;
    Content content;              ///< null for a folder
    Content flushed;              ///< what the disk surely holds; null: nothing yet
    Error refusal = error::none;  ///< the error of each opening, whoever asks
    std::size_t volume = 0;
    std::size_t mappings = 0;  ///< views of it as data
    std::size_t images = 0;    ///< processes that run it
    bool isNamed = true;       ///< its folder lists it
    bool isDeletePending = false;
    bool isForgotten = false;       ///< neither a name nor a holder is left
    std::vector<EntryId> children;  ///< ordered by key

    [[nodiscard]] bool isFolder() const {
        return (attributes & attribute::folder) != 0;
    }
    [[nodiscard]] bool isReadOnly() const {
        return (attributes & attribute::readOnly) != 0;
    }
};

/// One volume. All of this may be changed at any time.
struct Volume {
    std::string name = "C:";     ///< "C:", or "//server/share"
    std::string finalName = {};  ///< what final paths begin with instead, for a subst letter
    EntryId root = kNoEntry;
    bool isPresent = true;
    Error absentOpening = error::pathNotFound;  ///< the error of an opening while the volume is away
    Error absentHandle = error::deviceGone;     ///< the error of an open handle meanwhile
    Error finalNameError = error::none;         ///< the error of asking for a final name (a memory disk: 1)
    std::uint64_t freeBytes = std::uint64_t{1} << 50;
    bool deletesAtOnce = true;        ///< a deleted file that is held loses its name at once (POSIX delete)
    bool refusesDeviceNames = false;  ///< a network share: 5
    bool isWriteProtected = false;    ///< 19
};

/// Entries and their names, without the rules of who may do what.
class Disk {
public:
    static constexpr std::uint64_t kEntryBytes = 1024;  ///< the free bytes of a volume that a name takes

    std::size_t addVolume(Volume volume);
    [[nodiscard]] std::vector<Volume>& volumes() {
        return volumes_;
    }
    [[nodiscard]] const std::vector<Volume>& volumes() const {
        return volumes_;
    }

    [[nodiscard]] Entry& at(EntryId id) {
        return entries_[id];
    }
    [[nodiscard]] const Entry& at(EntryId id) const {
        return entries_[id];
    }

    /// kNoEntry when the folder has no such name.
    [[nodiscard]] EntryId child(EntryId folder, std::string_view name) const;

    /// @param attributes decide whether it is a folder; a file begins empty
    EntryId create(EntryId folder, std::string_view name, std::uint32_t attributes);

    /// Removes the entry's name. The entry itself stays until forget().
    void unlink(EntryId id);

    /// Gives the entry another name in another folder, or another spelling of its name.
    void rename(EntryId id, EntryId folder, std::string_view name);

    /// Frees the room of an entry without a name.
    void forget(EntryId id);

    /// Changes nothing when the volume has no room for it.
    ///
    /// @return false without room
    bool replaceContent(EntryId id, Content content);

    [[nodiscard]] bool hasRoom(std::size_t volume, std::uint64_t bytes) const {
        return volumes_[volume].freeBytes >= bytes;
    }

    /// "C:/Games/Kelvane/data/a.pak"; a root is "C:/". The last known path for an entry without a name.
    [[nodiscard]] std::string pathOf(EntryId id) const;

    /// True also for the folder itself.
    [[nodiscard]] bool isBelow(EntryId id, EntryId folder) const;
    [[nodiscard]] std::size_t count() const {
        return entries_.size();
    }

private:
    [[nodiscard]] std::vector<EntryId>::const_iterator place(EntryId folder, std::string_view key) const;
    void link(EntryId id, EntryId folder, std::string_view name);

    std::vector<Entry> entries_;
    std::vector<Volume> volumes_;
};

}  // namespace vorthmere::update::simulation
