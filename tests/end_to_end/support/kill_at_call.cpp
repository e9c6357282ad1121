// Loaded into a program before its libraries, this kills it right before one of its calls that change files.
// KVN_KILL_AT_CALL holds the number of that call, counted from 1 over all threads.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>

namespace {

std::atomic<long> callsLeft{[] {
    const char* const number = std::getenv("KVN_KILL_AT_CALL");
    return number ? std::atol(number) : 0L;
}()};

template <typename Function>
Function* uncounted(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

template <typename Function>
Function* original(const char* name) {
    if (--callsLeft == 0) std::raise(SIGKILL);
    return uncounted<Function>(name);
}

}  // namespace

extern "C" {

// Only the calls that create a file count.
int open(const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    using Open = int(const char*, int, ...);
    return (flags & O_CREAT) != 0 ? original<Open>("open")(path, flags, mode) : uncounted<Open>("open")(path, flags);
}

ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t position) {
    return original<ssize_t(int, const void*, std::size_t, off_t)>("pwrite")(file, bytes, count, position);
}

int fchmod(int file, mode_t mode) noexcept {
    return original<int(int, mode_t)>("fchmod")(file, mode);
}

int fsync(int file) {
    return original<int(int)>("fsync")(file);
}

int rename(const char* from, const char* to) noexcept {
    return original<int(const char*, const char*)>("rename")(from, to);
}

int mkdir(const char* path, mode_t mode) noexcept {
    return original<int(const char*, mode_t)>("mkdir")(path, mode);
}

int rmdir(const char* path) noexcept {
    return original<int(const char*)>("rmdir")(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    return original<int(int, const char*, int)>("unlinkat")(folder, path, flags);
}
}
