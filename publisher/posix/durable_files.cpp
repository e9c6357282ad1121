#include "publisher/durable_files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "publisher/in_quotes.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

// A web server may run under another account.
constexpr mode_t kPublishedFileMode = 0644;
constexpr mode_t kPublishedFolderMode = 0755;

bool fail(const fs::path& path, std::string_view what, std::string& error) {
    error = inQuotes(path) + " cannot be " + std::string(what) + ": " + std::generic_category().message(errno) + ".";
    return false;
}

int fileOf(const Descriptor& descriptor) {
    return static_cast<int>(descriptor.get());
}

Descriptor openFolder(const fs::path& folder, int flags = 0) {
    return Descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags));
}

bool openToAll(const fs::path& folder) {
    const Descriptor descriptor = openFolder(folder, O_NOFOLLOW);
    struct stat status {};
    // Bits that a new folder inherits besides the permissions, such as set-group-ID, stay.
    return descriptor && fstat(fileOf(descriptor), &status) == 0 &&
           fchmod(fileOf(descriptor), (status.st_mode & (S_ISUID | S_ISGID | S_ISVTX)) | kPublishedFolderMode) == 0;
}

/// The folder that holds a folder's entry.
fs::path folderAbove(const fs::path& folder) {
    const fs::path above = folder.parent_path();
    return above.empty() ? fs::path(".") : above;
}

/// True while the path still leads to the open folder. Another process may have removed that folder meanwhile.
bool isStillThere(const Descriptor& descriptor, const fs::path& folder) {
    struct stat opened {};
    struct stat present {};
    return fstat(fileOf(descriptor), &opened) == 0 && stat(folder.c_str(), &present) == 0 &&
           opened.st_dev == present.st_dev && opened.st_ino == present.st_ino;
}

}  // namespace

Descriptor::~Descriptor() {
    if (descriptor_ != kNone) close(static_cast<int>(descriptor_));
}

bool InputFile::open(const fs::path& path, std::string& error) {
    path_ = path;
    file_ = Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return file_ || fail(path_, "read", error);
}

bool InputFile::readAt(std::uint64_t position, std::span<char> buffer, std::size_t& count, std::string& error) {
    count = 0;
    while (count < buffer.size()) {
        const ssize_t read =
            pread(fileOf(file_), buffer.data() + count, buffer.size() - count, static_cast<off_t>(position + count));
        if (read < 0 && errno == EINTR) continue;
        if (read < 0) return fail(path_, "read", error);
        if (read == 0) return true;
        count += static_cast<std::size_t>(read);
    }
    return true;
}

bool OutputFile::create(const fs::path& path, std::string& error) {
    path_ = path;
    size_ = 0;
    file_ = Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, kPublishedFileMode));
    // The process's umask may have removed bits.
    return (file_ && fchmod(fileOf(file_), kPublishedFileMode) == 0) || fail(path_, "created", error);
}

bool OutputFile::write(std::span<const char> bytes, std::string& error) {
    if (!writeAt(size_, bytes, error)) return false;
    // The disk begins now, so that finish() has less to wait for. Only finish() tells whether it worked.
    static_cast<void>(sync_file_range(fileOf(file_), static_cast<off_t>(size_), static_cast<off_t>(bytes.size()),
                                      SYNC_FILE_RANGE_WRITE));
    size_ += bytes.size();
    return true;
}

bool OutputFile::writeAt(std::uint64_t position, std::span<const char> bytes, std::string& error) {
    while (!bytes.empty()) {
        const ssize_t count = pwrite(fileOf(file_), bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return fail(path_, "written", error);
        position += static_cast<std::uint64_t>(count);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

bool OutputFile::finish(std::string& error) {
    if (fsync(fileOf(file_)) != 0) return fail(path_, "written", error);
    file_ = Descriptor();
    return true;
}

bool createFolders(const fs::path& folder, std::vector<fs::path>& made, std::string& error) {
    fs::path path;
    for (const fs::path& component : folder) {
        path /= component;
        std::error_code failure;
        if (component.empty() || fs::is_directory(path, failure)) continue;
        if (mkdir(path.c_str(), kPublishedFolderMode) == 0)
            made.push_back(path);
        else if (errno == EEXIST && fs::is_directory(path, failure))
            continue;
        else
            return fail(path, "created", error);
        if (!openToAll(path)) return fail(path, "opened to everybody", error);
        if (!syncFolder(folderAbove(path), error)) return false;
    }
    return true;
}

bool moveIntoPlace(const fs::path& from, const fs::path& to, std::string& error) {
    return rename(from.c_str(), to.c_str()) == 0 || fail(to, "replaced", error);
}

bool removeFile(const fs::path& file, std::string& error) {
    return unlinkat(AT_FDCWD, file.c_str(), 0) == 0 || errno == ENOENT || fail(file, "removed", error);
}

bool removeTree(const fs::path& folder, std::string& error) {
    std::error_code failure;
    fs::remove_all(folder, failure);
    if (failure) error = inQuotes(folder) + " cannot be removed: " + failure.message() + ".";
    return !failure;
}

bool syncFolder(const fs::path& folder, std::string& error) {
    const Descriptor descriptor = openFolder(folder);
    return (descriptor && fsync(fileOf(descriptor)) == 0) || fail(folder, "written", error);
}

bool lockFolder(const fs::path& folder, Descriptor& lock, std::string& error) {
    Descriptor descriptor = openFolder(folder);
    if (!descriptor) return fail(folder, "opened", error);
    if (flock(fileOf(descriptor), LOCK_EX | LOCK_NB) == 0) {
        if (!isStillThere(descriptor, folder)) {
            error = inQuotes(folder) + " was removed while it was being locked.";
            return false;
        }
        lock = std::move(descriptor);
        return true;
    }
    if (errno != EWOULDBLOCK) return fail(folder, "locked", error);
    error = "Another kvn-release is writing to " + inQuotes(folder) + "; let it finish first.";
    return false;
}

// The lock is on the folder itself. No other process gets it before the folder is removed.
void removeMadeFolders(const std::vector<fs::path>& made, Descriptor) {
    for (auto folder = made.rbegin(); folder != made.rend(); ++folder)
        if (rmdir(folder->c_str()) != 0) return;
}

}  // namespace vorthmere::publish
