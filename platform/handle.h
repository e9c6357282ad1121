#pragma once

#include <utility>

namespace vorthmere::update {

/// Owns one handle and closes it at the end of its life.
///
/// `Traits` names the handle's type (`Type`), the value that means "none" (`none()`), and how to close one
/// (`close(Type)`). Storing a handle closes the previous one.
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
        if (previous != Traits::none() && previous != handle) Traits::close(previous);
    }

    /// Closes the handle and returns the address where a call may store a new one.
    [[nodiscard]] Type* receive() noexcept {
        reset();
        return &handle_;
    }

private:
    Type handle_ = Traits::none();
};

/// A handle that only the platform's sources look into. `closeHandle` closes one and keeps the thread's last error, so
/// that lastErrorNumber() still tells why a call failed after its handles went out of scope.
template <void closeHandle(void*) noexcept>
struct OpaqueHandleTraits {
    using Type = void*;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type handle) noexcept {
        closeHandle(handle);
    }
};

}  // namespace vorthmere::update
