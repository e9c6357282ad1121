#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "publisher/durable_files.h"
#include "publisher/in_quotes.h"

namespace vorthmere::publish {
namespace {

// Web servers run under accounts of their own.
constexpr mode_t kPublishedFileMode = 0644;
constexpr mode_t kPublishedFolderMode = 0755;

bool fail(const std::filesystem::path& path, std::string_view what, std::string& error) {
    error = inQuotes(path) + " cannot be " + std::string(what) + ": " + std::generic_category().message(errno) + ".";
    return false;
}

bool createFolder(const std::filesystem::path& folder) {
    if (mkdir(folder.c_str(), kPublishedFolderMode) != 0) return errno == EEXIST;
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    struct stat status {};
    // What a folder inherits beside the permissions, such as its group, stays.
    return descriptor && fstat(descriptor.get(), &status) == 0 &&
           fchmod(descriptor.get(), (status.st_mode & (S_ISUID | S_ISGID | S_ISVTX)) | kPublishedFolderMode) == 0;
}

}  // namespace

Descriptor::~Descriptor() {
    if (descriptor_ >= 0) close(descriptor_);
}

bool OutputFile::create(const std::filesystem::path& path, std::string& error) {
    path_ = path;
    file_ = Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, kPublishedFileMode));
    // The process's umask may have taken bits away.
    return (file_ && fchmod(file_.get(), kPublishedFileMode) == 0) || fail(path_, "created", error);
}

bool OutputFile::write(std::span<const char> bytes, std::string& error) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file_.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return fail(path_, "written", error);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

bool OutputFile::finish(std::string& error) {
    if (fsync(file_.get()) != 0) return fail(path_, "written", error);
    file_ = Descriptor();
    return true;
}

bool writeFile(const std::filesystem::path& path, std::string_view text, std::string& error) {
    OutputFile file;
    return file.create(path, error) && file.write({text.data(), text.size()}, error) && file.finish(error);
}

bool createFolders(const std::filesystem::path& folder, std::string& error) {
    std::filesystem::path path;
    for (const std::filesystem::path& component : folder) {
        path /= component;
        std::error_code failure;
        if (!std::filesystem::is_directory(path, failure) && !createFolder(path)) return fail(path, "created", error);
    }
    return true;
}

bool moveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to, std::string& error) {
    return rename(from.c_str(), to.c_str()) == 0 || fail(to, "replaced", error);
}

bool syncFolder(const std::filesystem::path& folder, std::string& error) {
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return (descriptor && fsync(descriptor.get()) == 0) || fail(folder, "written", error);
}

bool lockFolder(const std::filesystem::path& folder, Descriptor& lock, std::string& error) {
    Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor) return fail(folder, "opened", error);
    if (flock(descriptor.get(), LOCK_EX | LOCK_NB) == 0) {
        lock = std::move(descriptor);
        return true;
    }
    if (errno != EWOULDBLOCK) return fail(folder, "locked", error);
    error = "Another kvn-release is writing to " + inQuotes(folder) + "; let it finish first.";
    return false;
}

bool outputIsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

}  // namespace vorthmere::publish
