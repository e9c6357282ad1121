// Loaded into a program before its libraries, this kills it right before one of its calls that change files: the one
// whose number, counted from 1 over all threads, stands in KVN_KILL_AT_CALL.
#include <dlfcn.h>
#include <sys/types.h>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdlib>

namespace {

std::atomic<long> callsLeft{[] {
    const char* const number = std::getenv("KVN_KILL_AT_CALL");
    return number ? std::atol(number) : 0L;
}()};

template <typename Function>
Function* original(const char* name) {
    if (--callsLeft == 0) std::raise(SIGKILL);
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

ssize_t write(int file, const void* bytes, std::size_t count) {
    return original<ssize_t(int, const void*, std::size_t)>("write")(file, bytes, count);
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

int unlinkat(int folder, const char* path, int flags) noexcept {
    return original<int(int, const char*, int)>("unlinkat")(folder, path, flags);
}
}
