#include "tests/simulation/archive_tool.h"

#include <algorithm>

#include "tests/simulation/command_line.h"
#include "tests/simulation/file_system.h"
#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::size_t kLinesPerStep = 16;
constexpr std::size_t kLongestCurrentFolder = 258;

/// A name in the code page of the system, "\" doubled, unprintable bytes as octal numbers; nothing when the code page
/// lacks one of its letters.
std::optional<std::string> printable(std::string_view name) {
    std::string line;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        if (byte == '\\') {
            line += "\\\\";
        } else if (byte < 0x20 || byte == 0x7F) {
            line += {'\\', static_cast<char>('0' + byte / 64), static_cast<char>('0' + byte / 8 % 8),
                     static_cast<char>('0' + byte % 8)};
        } else if (byte < 0x80) {
            line += name[i];
        } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < name.size()) {
            line += static_cast<char>((byte & 0x3) << 6 | (static_cast<unsigned char>(name[++i]) & 0x3F));
        } else {
            return std::nullopt;
        }
    }
    return line;
}

/// An argument after the system's code page: letters that it lacks become "?".
std::string throughCodePage(std::string_view argument) {
    std::string text;
    for (std::size_t i = 0; i < argument.size(); ++i) {
        const auto byte = static_cast<unsigned char>(argument[i]);
        if (byte < 0x80 || byte == 0xC2 || byte == 0xC3)
            text += argument[i];
        else if ((byte & 0xC0) != 0x80)
            text += '?';
        else if (text.ends_with('\xC2') || text.ends_with('\xC3'))
            text += argument[i];
    }
    return text;
}

/// The name under which an entry is unpacked: no drive, no leading separator, and "_" for each character that no name
/// may hold.
std::string unpackedName(std::string_view name) {
    std::string clean = withSlashes(name);
    if (clean.size() >= 2 && clean[1] == ':') clean.erase(0, 2);
    clean.erase(0, std::min(clean.find_first_not_of('/'), clean.size()));
    while (clean.ends_with('/'))
        clean.pop_back();
    std::replace_if(
        clean.begin(), clean.end(),
        [](char c) {
            return static_cast<unsigned char>(c) < 0x20 || std::string_view(":*?\"<>|").find(c) != std::string::npos;
        },
        '_');
    return clean;
}

bool climbs(std::string_view name) {
    while (!name.empty())
        if (takeComponent(name) == "..") return true;
    return false;
}

}  // namespace

ArchiveToolRun::ArchiveToolRun(std::string_view commandLine, const ArchiveToolBehaviour& behaviour)
    : behaviour_(behaviour) {
    for (const std::string& argument : splitCommandLine(commandLine))
        arguments_.push_back(throughCodePage(argument));
}

bool ArchiveToolRun::step(FileSystem& files, std::string& output) {
    switch (stage_) {
        case Stage::begin:
            begin(files, output);
            break;
        case Stage::list:
            list(output);
            break;
        case Stage::unpack:
            unpackNext(files, output);
            break;
        case Stage::fill:
            fill(files, output);
            break;
        case Stage::ended:
            break;
    }
    return stage_ != Stage::ended;
}

void ArchiveToolRun::complain(std::string& output, std::string_view sentence) {
    output.append("tar: ").append(sentence).append("\r\n");
    exitCode_ = 1;
}

void ArchiveToolRun::fail(std::string& output, std::string_view sentence) {
    complain(output, sentence);
    entries_.clear();
    isWhole_ = true;
    finish(output);
}

void ArchiveToolRun::finish(std::string& output) {
    if (!isWhole_) complain(output, "Truncated archive");
    if (exitCode_ != 0) output.append("tar: Error exit delayed from previous errors.\r\n");
    exitCode_ = behaviour_.exitCode.value_or(exitCode_);
    waitsForEver_ = behaviour_.neverEnds;
    stage_ = Stage::ended;
}

// The package stays open until the end of the run.
void ArchiveToolRun::begin(FileSystem& files, std::string& output) {
    output.append(behaviour_.alsoPrints);
    for (std::size_t left = behaviour_.alsoPrintsBytes; left > 0; left -= std::min<std::size_t>(left, 64))
        output.append(std::string(std::min<std::size_t>(left, 64) - 1, 'x')).append("\n");
    if (arguments_.size() < 3) return fail(output, "Must specify one of -c, -r, -t, -u, -x");
    constexpr unsigned shared = access::read | access::write;
    const std::string& package = arguments_[2];
    if (files.open(package, access::read, shared, false, package_) != error::none)
        return fail(output, "Error opening archive: Failed to open '" + package + "'");
    const Content bytes = files.disk.at(files.openFile(package_)->entry).content;
    std::optional<std::vector<PackagedEntry>> entries = entriesOf(*bytes, isWhole_);
    if (!entries) return fail(output, "Error opening archive: Unrecognized archive format");
    entries_ = std::move(*entries);
    stage_ = arguments_[1] == "-tf" ? Stage::list : Stage::unpack;
    if (arguments_.size() < 5 || arguments_[3] != "-C") return;
    const bool isTooLong = utf16Length(arguments_[4]) > kLongestCurrentFolder;
    if (isTooLong || files.setCurrentFolder(files.caller, arguments_[4]) != error::none)
        return fail(output, "could not chdir to '" + arguments_[4] + "'");
}

void ArchiveToolRun::list(std::string& output) {
    for (std::size_t lines = 0; lines < kLinesPerStep && next_ < entries_.size(); ++lines, ++next_) {
        const PackagedEntry& entry = entries_[next_];
        if (const std::optional<std::string> line = printable(entry.name)) {
            output.append(*line);
            if (entry.kind == PackagedEntry::Kind::folder && !line->ends_with('/')) output.push_back('/');
            output.append("\r\n");
        } else {
            complain(output, "Pathname can't be converted from UTF-8 to current locale.");
        }
    }
    if (next_ == entries_.size()) finish(output);
}

// Refuses symbolic links on the way and follows junctions.
bool ArchiveToolRun::createFolders(FileSystem& files, const std::string& folder) {
    if (folder.size() <= folder_.size()) return true;
    if (!createFolders(files, folder.substr(0, folder.find_last_of('/')))) return false;
    const std::optional<EntryView> there = files.find(folder);
    if (there && there->reparseTag == tag::symbolicLink) return false;
    if (there && there->isFolder()) return true;
    if (there && files.deleteFile(folder) != error::none) return false;
    return files.createFolder(folder) == error::none;
}

void ArchiveToolRun::createFile(FileSystem& files, const PackagedEntry& entry, const std::string& path,
                                std::string& output) {
    const bool isLink = entry.kind != PackagedEntry::Kind::file;
    const std::optional<EntryView> there = files.find(path);
    if (there && there->isFolder())
        return complain(output, entry.name + ": Can't replace existing directory with non-directory");
    if (there && files.deleteFile(path) != error::none)
        return complain(output, entry.name + ": Can't unlink already-existing object");
    if (isLink) {
        const bool toFolder = entry.kind == PackagedEntry::Kind::folderLink;
        if (!behaviour_.makesLinks || files.createLink(path, tag::symbolicLink, entry.content, toFolder) != error::none)
            complain(output, entry.name + ": Can't create symbolic link");
        return;
    }
    if (files.open(path, access::write, access::none, true, file_) != error::none)
        return complain(output, entry.name + ": Can't create '" + entry.name + "'");
    unpacked_ = path;
    stage_ = Stage::fill;
}

// Names are taken literally: with "\\?\", dots at the end and device names are ordinary names.
void ArchiveToolRun::unpackNext(FileSystem& files, std::string& output) {
    if (next_ == entries_.size()) return finish(output);
    const PackagedEntry& entry = entries_[next_++];
    folder_ = "//?/" + files.currentFolderOf(files.caller);
    const std::string name = unpackedName(entry.name);
    if (name != withSlashes(entry.name).substr(0, name.size()) && !entry.name.empty())
        output.append("tar: Removing leading drive letter or '/' from member names\r\n");
    if (name.empty()) return;
    if (climbs(name)) return complain(output, entry.name + ": Path contains '..'");
    const std::string path = folder_ + "/" + name;
    const std::string parent = path.substr(0, path.find_last_of('/'));
    if (!createFolders(files, parent)) return complain(output, entry.name + ": Failed to create dir '" + name + "'");
    if (entry.kind != PackagedEntry::Kind::folder) return createFile(files, entry, path, output);
    if (!createFolders(files, path)) complain(output, entry.name + ": Failed to create dir '" + name + "'");
}

void ArchiveToolRun::fill(FileSystem& files, std::string& output) {
    const PackagedEntry& entry = entries_[next_ - 1];
    const std::size_t size = entry.isDamaged ? entry.content.size() / 2 : entry.content.size();
    if (files.write(file_, std::string_view(entry.content).substr(0, size)) != error::none)
        complain(output, entry.name + ": Write failed");
    if (entry.isDamaged) complain(output, entry.name + ": ZIP bad CRC");
    (void)files.close(file_);
    if (entry.isReadOnly) (void)files.setAttributes(unpacked_, attribute::archive | attribute::readOnly);
    stage_ = Stage::unpack;
}

}  // namespace vorthmere::update::simulation
