#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/disk.h"
#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

/// Path limits and names that depend on how Windows is set up.
struct FileSystemSettings {
    std::size_t longestPath = 32760;            ///< UTF-16 units; 259 for a program without long paths
    std::size_t longestFolderToCreate = 32760;  ///< 247 for such a program
    bool deviceNamesWithExtension = true;  ///< Windows 10: "nul.txt" in any folder; Windows 11: the bare name alone
    enum class ListingOrder { byName, reversed } listingOrder = ListingOrder::byName;
};

struct OpenFile {
    HandleId id = 0;
    ProcessId owner = 0;
    EntryId entry = kNoEntry;
    unsigned access = access::none;
    unsigned sharing = access::all;
    std::string path;  ///< as it was asked for
    std::uint64_t position = 0;
    bool isDevice = false;         ///< the "NUL" device: nothing comes out, anything goes in
    bool isCurrentFolder = false;  ///< not a handle of the program's own
};

/// A range of bytes that only one handle may read and write.
struct Lock {
    HandleId owner = 0;
    EntryId entry = kNoEntry;
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

struct Listed {
    std::string name;
    std::uint32_t attributes = 0;
};

struct Facts {
    std::uint32_t attributes = 0;
    std::uint64_t size = 0;
};

/// One entry as a test sees it, without any rules.
struct EntryView {
    std::string path;  ///< "C:/Games/Kelvane/data/a.pak", spelled as the names are kept
    std::uint32_t attributes = 0;
    std::uint32_t reparseTag = tag::none;
    std::string linkTarget;
    Content content;  ///< null for a folder
    bool isDeletePending = false;
    bool isFlushed = true;

    [[nodiscard]] bool isFolder() const {
        return (attributes & attribute::folder) != 0;
    }
    friend bool operator==(const EntryView& left, const EntryView& right);
};

/// How much of its work a call does before it fails or ends with its process.
enum class Extent { none, part, whole };

/// What happens to a file's unflushed bytes when the power goes.
enum class Fate { keep, zero, drop };

/// Files and folders under the rules of Windows. One process makes all calls, the caller: relative paths start in its
/// current folder, and it owns what it opens. Paths are UTF-8 with either separator.
class FileSystem {
public:
    FileSystemSettings settings;
    Disk disk;
    ProcessId caller = 0;

    // What the calls of changes.h, entries.h and streams.h do. An Extent of `part` is for failures and ends midway.
    Error entryAttributes(std::string_view path, std::uint32_t& attributes) const;
    Error entryFacts(std::string_view path, Facts& facts) const;
    Error targetFacts(std::string_view path, Facts& facts) const;
    Error listFolder(std::string_view folder, std::vector<Listed>& entries) const;
    Error fullPath(std::string_view path, std::string& full) const;
    Error finalPath(HandleId file, std::string& path) const;
    Error createFolder(std::string_view folder);
    Error removeEmptyFolder(std::string_view folder);
    Error deleteFile(std::string_view file);
    Error setAttributes(std::string_view path, std::uint32_t attributes);
    Error moveFile(std::string_view from, std::string_view to);
    Error copyFile(std::string_view from, std::string_view to, bool overwrite, Extent extent = Extent::whole);
    Error openForItsName(std::string_view path, HandleId& file);
    Error openToRead(std::string_view path, HandleId& file);
    Error createToWrite(std::string_view path, HandleId& file);
    Error read(HandleId file, char* buffer, std::size_t size, std::size_t& count);
    Error write(HandleId file, std::string_view bytes);
    Error flush(HandleId file);
    Error flushFile(std::string_view path);
    Error close(HandleId file);
    /// Drops the second half of a file, as if its last bytes had never reached the disk.
    void loseHalf(HandleId file);

    // What other programs also do.
    /// @param create makes the file when it is missing
    Error open(std::string_view path, unsigned access, unsigned sharing, bool create, HandleId& file);
    Error lock(HandleId file, std::uint64_t offset, std::uint64_t length);
    /// Maps a file as data. The mapping stays when the handle is closed.
    Error map(std::string_view path);
    void unmap(std::string_view path);
    /// The target is taken as written. A link to a folder may replace an empty folder; else the path must be free.
    Error createLink(std::string_view path, std::uint32_t reparseTag, std::string_view target, bool toFolder);
    /// Records that a process runs this file. @return the error that CreateProcessW gives for the file
    Error beginImage(std::string_view path, EntryId& image);
    void endImage(EntryId image);
    Error setCurrentFolder(ProcessId process, std::string_view folder);
    [[nodiscard]] std::string currentFolderOf(ProcessId process) const;

    /// Closes all that a process holds, its current folder too.
    void closeAllOf(ProcessId process);

    /// The open files of a process, without its current folder.
    [[nodiscard]] std::vector<OpenFile> openFilesOf(ProcessId process) const;
    [[nodiscard]] const OpenFile* openFile(HandleId file) const;

    /// How often something was closed that was not open.
    [[nodiscard]] std::size_t wrongClosings() const {
        return wrongClosings_;
    }

    // Without any rules, for setting up and looking.
    /// Creates missing parents. An existing entry is replaced in place.
    void putFolder(std::string_view path, std::uint32_t attributes = 0);
    void putFile(std::string_view path, Content content, std::uint32_t attributes = attribute::archive);
    void putReparsePoint(std::string_view path, std::uint32_t reparseTag, std::string_view target, bool isFolder);
    void erase(std::string_view path);
    void refuse(std::string_view path, Error refusal);
    /// kNoEntry when nothing is there; a link is not followed.
    [[nodiscard]] EntryId entryOf(std::string_view path) const;
    [[nodiscard]] std::optional<EntryView> find(std::string_view path) const;
    [[nodiscard]] std::vector<EntryView> entriesBelow(std::string_view folder) const;
    /// Everything on all volumes, each folder before its content, by name.
    [[nodiscard]] std::vector<EntryView> entries() const;
    [[nodiscard]] Volume& volumeOf(std::string_view path);

    /// Makes everything that was written until now survive a power loss.
    void flushAll();
    /// Paths of files with unflushed bytes, by name.
    [[nodiscard]] std::vector<std::string> unflushed() const;
    /// Drops all handles and mappings; the n-th unflushed file meets fates[n % size], or keeps its bytes when there are
    /// no fates.
    void losePower(const std::vector<Fate>& fates);

private:
    /// Where a path leads.
    struct Place {
        Error error = error::none;  ///< 2 when only the entry itself is missing, 3 when its folder is
        EntryId entry = kNoEntry;
        EntryId folder = kNoEntry;  ///< set when the entry could be made in it; no folder for a root
        std::string name;           ///< the last component, as it was asked for
        bool isDevice = false;
        bool endsInSeparator = false;
    };
    enum class Links { follow, keep };  // of the last component; those before are always followed

    [[nodiscard]] Place locate(std::string_view path, Links links) const;
    [[nodiscard]] Error walk(const std::string& fullPath, std::size_t volumeLength, Links links, Place& place,
                             std::string& redirected) const;
    void finishPlace(Place& place) const;
    [[nodiscard]] std::size_t volumeNamed(std::string_view name) const;
    [[nodiscard]] std::string pathBehindLink(EntryId link, std::string_view rest) const;

    [[nodiscard]] Error openingError(EntryId entry, unsigned access, unsigned sharing) const;
    [[nodiscard]] Error removalError(EntryId entry) const;
    [[nodiscard]] Error overwritingError(EntryId entry, unsigned sharing) const;
    [[nodiscard]] Error replacingError(EntryId from, EntryId to) const;
    [[nodiscard]] Error creationError(const Place& place) const;
    [[nodiscard]] bool isHeld(EntryId entry) const;
    [[nodiscard]] bool isAnyHeldBelow(EntryId folder) const;
    [[nodiscard]] bool isLocked(EntryId entry, HandleId by, std::uint64_t begin, std::uint64_t end) const;
    [[nodiscard]] std::string_view currentFolder() const;

    Error moveToOtherVolume(std::string_view from, std::string_view to, EntryId source);
    Error moveOnto(EntryId source, const Place& target);
    Error openCopyTarget(const Place& place, bool overwrite, EntryId source, EntryId& target);
    Error fillCopy(EntryId source, EntryId target, Extent extent);
    void abandonCopy(EntryId target);
    Error makeFile(const Place& place, EntryId& created);
    [[nodiscard]] Error handleError(const OpenFile& file) const;
    void remove(EntryId entry);
    void removeIfLetGo(EntryId entry);
    HandleId hold(EntryId entry, unsigned access, unsigned sharing, std::string_view path);
    [[nodiscard]] OpenFile* findOpen(HandleId id);
    [[nodiscard]] EntryView viewOf(EntryId entry) const;
    void collect(EntryId folder, std::vector<EntryView>& views) const;
    EntryId folderFor(std::string_view path, std::string& name);
    EntryId put(std::string_view path, std::uint32_t attributes);

    std::vector<OpenFile> files_;
    std::vector<Lock> locks_;
    std::map<ProcessId, std::string> currentFolders_;
    HandleId nextHandle_ = 0x1000;
    std::size_t wrongClosings_ = 0;
};

}  // namespace vorthmere::update::simulation
