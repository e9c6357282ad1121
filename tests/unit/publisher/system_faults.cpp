#include "tests/unit/publisher/system_faults.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <set>
#include <system_error>

namespace vorthmere::publish::testing {
namespace {

// ".", ".." and the first entry, in any order.
constexpr int kReadBeforeFailure = 3;

int lockError = 0;
int listingError = 0;
int readsLeft = 0;
struct stat failingFolder {};
bool notesSyncs = false;
std::set<std::pair<dev_t, ino_t>> synced;

template <typename Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isFailingFolder(DIR* folder) {
    struct stat status {};
    return fstat(dirfd(folder), &status) == 0 && status.st_dev == failingFolder.st_dev &&
           status.st_ino == failingFolder.st_ino;
}

}  // namespace

FailingLocks::FailingLocks(int errorNumber) {
    lockError = errorNumber;
}

FailingLocks::~FailingLocks() {
    lockError = 0;
}

FailingListing::FailingListing(const std::filesystem::path& folder, int errorNumber) {
    if (stat(folder.c_str(), &failingFolder) != 0)
        throw std::system_error(errno, std::generic_category(), folder.string());
    readsLeft = kReadBeforeFailure;
    listingError = errorNumber;
}

FailingListing::~FailingListing() {
    listingError = 0;
}

SyncedFolders::SyncedFolders() {
    synced.clear();
    notesSyncs = true;
}

SyncedFolders::~SyncedFolders() {
    notesSyncs = false;
}

bool SyncedFolders::holds(const std::filesystem::path& folder) {
    struct stat status {};
    return stat(folder.c_str(), &status) == 0 && synced.contains({status.st_dev, status.st_ino});
}

}  // namespace vorthmere::publish::testing

// The loader prefers functions of the program to those of the system's library, for all libraries.
extern "C" {

int flock(int file, int operation) noexcept {
    using namespace vorthmere::publish::testing;
    if (lockError == 0) return original<int(int, int)>("flock")(file, operation);
    errno = lockError;
    return -1;
}

int fsync(int file) {
    using namespace vorthmere::publish::testing;
    struct stat status {};
    if (notesSyncs && fstat(file, &status) == 0 && S_ISDIR(status.st_mode))
        synced.emplace(status.st_dev, status.st_ino);
    return original<int(int)>("fsync")(file);
}

dirent* readdir(DIR* folder) {
    using namespace vorthmere::publish::testing;
    if (listingError == 0 || !isFailingFolder(folder) || readsLeft-- > 0)
        return original<dirent*(DIR*)>("readdir")(folder);
    errno = listingError;
    return nullptr;
}
}
