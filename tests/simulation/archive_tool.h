#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/disk.h"
#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

class FileSystem;

/// One entry of a package in the model's own format.
struct PackagedEntry {
    enum class Kind { file, folder, fileLink, folderLink };
    std::string name = {};     ///< as the archive holds it, "/" separated; hostile ones too
    std::string content = {};  ///< a file's bytes, a link's target
    Kind kind = Kind::file;
    bool isReadOnly = false;
    bool isDamaged = false;  ///< its bytes cannot be unpacked; listing it works
};

/// The bytes of a package. The tool rejects any other file as no archive.
[[nodiscard]] std::string packageOf(const std::vector<PackagedEntry>& entries);

/// Nothing when the bytes are no package. A package that was cut short gives the entries before the cut, and `isWhole`
/// becomes false.
[[nodiscard]] std::optional<std::vector<PackagedEntry>> entriesOf(std::string_view package, bool& isWhole);

/// What the archive tool does besides its work.
struct ArchiveToolBehaviour {
    Error startError = error::none;
    std::string alsoPrints = {};                 ///< before its listing or its work, for instance a warning
    std::size_t alsoPrintsBytes = 0;             ///< this many bytes more, in lines
    bool makesLinks = false;                     ///< it has the privilege
    bool neverEnds = false;                      ///< it waits for ever once its work is done
    std::optional<std::uint32_t> exitCode = {};  ///< replaces the one that it would have
};

/// One run of the archive tool, in steps. Between two steps other programs can act, and the tool can be killed.
class ArchiveToolRun {
public:
    /// @param commandLine as it was started: "-tf package" or "-xf package -C folder"
    ArchiveToolRun(std::string_view commandLine, const ArchiveToolBehaviour& behaviour);

    /// The next step: prints some lines or creates, fills or closes one entry.
    ///
    /// @param files  acts for the tool's process
    /// @param output receives what it prints
    /// @return false once it has ended
    bool step(FileSystem& files, std::string& output);

    [[nodiscard]] std::uint32_t exitCode() const {
        return exitCode_;
    }
    [[nodiscard]] bool waitsForEver() const {
        return waitsForEver_;
    }

private:
    enum class Stage { begin, list, unpack, fill, ended };

    void begin(FileSystem& files, std::string& output);
    void list(std::string& output);
    void unpackNext(FileSystem& files, std::string& output);
    void fill(FileSystem& files, std::string& output);
    void createFile(FileSystem& files, const PackagedEntry& entry, const std::string& path, std::string& output);
    bool createFolders(FileSystem& files, const std::string& folder);
    void complain(std::string& output, std::string_view sentence);
    void fail(std::string& output, std::string_view sentence);
    void finish(std::string& output);

    ArchiveToolBehaviour behaviour_;
    std::vector<std::string> arguments_;
    std::vector<PackagedEntry> entries_;
    std::string folder_;
    std::string unpacked_;
    std::size_t next_ = 0;
    HandleId package_ = 0;
    HandleId file_ = 0;
    Stage stage_ = Stage::begin;
    bool isWhole_ = true;
    bool waitsForEver_ = false;
    std::uint32_t exitCode_ = 0;
};

}  // namespace vorthmere::update::simulation
