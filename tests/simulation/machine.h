#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/digests.h"
#include "tests/simulation/file_system.h"
#include "tests/simulation/internet.h"
#include "tests/simulation/processes.h"
#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

/// The editions of Windows and the file systems that treat an update differently.
enum class Profile {
    classicDelete,  ///< NTFS, Windows 10 1803 and 1809: a deleted file that is held keeps its name
    posixDelete,    ///< NTFS, Windows 10 1903 and newer, 11: its name goes at once
    memoryStick,    ///< FAT or exFAT: classic deletion; pulled out, it is not ready
    networkShare,   ///< SMB: classic deletion, device names refused; gone, its path is bad
    devDrive,       ///< ReFS: classic deletion
};

/// A computer with Windows, in memory, the same on every platform and in every run. A copy is an independent snapshot.
/// It takes some microseconds, because contents are shared.
///
/// One process is the caller: the program under test. It begins with beginCaller() and ends with endCaller(), or is
/// killed. otherProgram does everything else that happens, through act() or through the members.
///
/// What is simpler than Windows:
/// - no access rights: an entry refuses everybody (FileSystem::refuse) or nobody
/// - no alternate streams (a colon in a name gives 123), hard links, short names, case-sensitive folders, compression
/// - letters beyond Latin, Greek and Cyrillic are compared exactly
/// - time passes only while something waits; files have no times
/// - a write has either reached the disk or is lost, file by file; renames are never lost, because losing the last of
///   them equals losing the power earlier
/// - a program that is ended is gone at once; a pipe takes any number of bytes
/// - a lock never waits, no handle is inherited except the pipe's write end, a process has no threads
/// - a deleted name is listed until its last holder goes, sizes that are listed are never old
/// - a folder as the source of a replacing rename may replace a file, as the kernel would allow
class Machine {
public:
    explicit Machine(Profile profile = Profile::posixDelete);

    FileSystem files;
    Processes processes;
    Internet internet;
    Digests digests;
    ProcessId otherProgram = 0;

    /// The process of the program under test.
    ProcessId caller = 0;

    /// True after the caller was killed or the power went: what its destructors still do changes nothing.
    [[nodiscard]] bool isFrozen() const {
        return isFrozen_;
    }

    /// Another process becomes the caller. A frozen machine thaws; nothing of the former caller may be left by then.
    ///
    /// @param program runs, so that its file is in use
    ProcessId beginCaller(std::string_view program, std::string_view currentFolder);

    /// The caller ends by itself. @return what it had not closed, in words; Windows closes it now
    std::vector<std::string> endCaller(std::uint32_t exitCode = 0);

    /// The caller ends between two instructions; Windows closes what it holds, and its children continue.
    void killCaller();

    /// All processes end, and unflushed bytes meet their fate. Names stay.
    void losePower(const std::vector<Fate>& fates);

    /// What the caller has open now, in words. Empty at the end of a clean run.
    [[nodiscard]] std::vector<std::string> openHandles() const;

    /// How often the caller closed what was not open, or used such a handle.
    std::size_t wrongHandles = 0;

    /// The error of the caller's last failed call.
    Error lastError = error::none;

private:
    void dropCallersHandles();
    bool isFrozen_ = false;
};

/// An action of another program, as data: what it does is subject to the rules of Windows and may fail.
struct Intrusion {
    enum class Kind {
        open,     ///< opens `path` with `access` and `sharing` and keeps it open
        release,  ///< closes what other programs have open, all of it or below `path`
        create,   ///< creates `path` with `second` as its content, or writes over it
        createFolder,
        remove,  ///< a file, a link or an empty folder
        rename,  ///< `path` to `second`, replacing
        setReadOnly,
        clearReadOnly,
        lock,  ///< the whole of `path`
        map,
        unmap,
        plantJunction,  ///< at `path` to `second`; an empty folder or a file there goes first
        plantFileLink,
        plantFolderLink,
        enterFolder,  ///< makes `path` the current folder of the other program
        leaveFolder,
        fillDisk,  ///< the volume of `path` has `number` free bytes
        freeDisk,
        takeVolumeAway,
        bringVolumeBack,
        startProgram,    ///< `path`, in its own folder
        endPrograms,     ///< all that run `path`
        letChildrenRun,  ///< archive tools that still run do `number` steps; 0: they run to their end
    };
    Kind kind = Kind::open;
    std::string path = {};
    std::string second = {};
    unsigned access = access::read;
    unsigned sharing = access::none;
    std::uint64_t number = 0;
};

[[nodiscard]] std::string_view nameOf(Intrusion::Kind kind);

/// "another program opens C:/Games/Kelvane/a.pak, sharing nothing"
[[nodiscard]] std::string describe(const Intrusion& intrusion);

/// @return Windows' error for the other program; 0 for success
Error act(Machine& machine, const Intrusion& intrusion);

}  // namespace vorthmere::update::simulation
