#pragma once

#include <windows.h>

#include "platform/handle.h"

namespace vorthmere::update::testing {

/// Processes, threads, events: null when there is none.
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
struct OpenFileTraits : KernelHandleTraits {
    static Type none() noexcept {
        return INVALID_HANDLE_VALUE;
    }
};

using KernelHandle = UniqueHandle<KernelHandleTraits>;
using OpenFile = UniqueHandle<OpenFileTraits>;

}  // namespace vorthmere::update::testing
