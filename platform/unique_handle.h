#pragma once

#include <windows.h>

#include <utility>

namespace vorthmere::update {

/// Owns one handle of the platform and closes it at the end of its life.
///
/// `Traits` names the handle's type (`Type`), the value that stands for "none" (`none()`), and how to close one
/// (`close(Type)`). Closing keeps the thread's last error, so that a failed call can still be asked for its reason
/// behind the end of a scope. Storing a handle closes the one that was held before.
template <typename Traits>
class UniqueHandle {
public:
    using Type = typename Traits::Type;

    UniqueHandle() noexcept = default;
    explicit UniqueHandle(Type handle) noexcept : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        reset(other.release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() {
        reset();
    }

    [[nodiscard]] Type get() const noexcept {
        return handle_;
    }

    explicit operator bool() const noexcept {
        return handle_ != Traits::none();
    }

    [[nodiscard]] Type release() noexcept {
        return std::exchange(handle_, Traits::none());
    }

    void reset(Type handle = Traits::none()) noexcept {
        const Type previous = std::exchange(handle_, handle);
        if (previous == Traits::none() || previous == handle) return;
        const DWORD lastError = GetLastError();
        Traits::close(previous);
        SetLastError(lastError);
    }

    /// Closes the handle held and gives the place where a call may put a new one.
    [[nodiscard]] Type* receive() noexcept {
        reset();
        return &handle_;
    }

private:
    Type handle_ = Traits::none();
};

/// Processes, threads, pipe ends: null when there is none.
struct KernelHandleTraits {
    using Type = HANDLE;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type handle) noexcept {
        CloseHandle(handle);
    }
};

/// What CreateFileW returns.
struct FileHandleTraits {
    using Type = HANDLE;
    static Type none() noexcept {
        return INVALID_HANDLE_VALUE;
    }
    static void close(Type handle) noexcept {
        CloseHandle(handle);
    }
};

/// What FindFirstFileExW returns.
struct FindHandleTraits {
    using Type = HANDLE;
    static Type none() noexcept {
        return INVALID_HANDLE_VALUE;
    }
    static void close(Type handle) noexcept {
        FindClose(handle);
    }
};

using KernelHandle = UniqueHandle<KernelHandleTraits>;
using FileHandle = UniqueHandle<FileHandleTraits>;
using FindHandle = UniqueHandle<FindHandleTraits>;

}  // namespace vorthmere::update
