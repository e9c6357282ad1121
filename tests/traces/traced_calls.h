#pragma once

#include <windows.h>
// windows.h has to come first.
#include <bcrypt.h>
#include <winhttp.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// The calls of Windows that this program's copy of the platform makes. It calls `traced_NAME` instead of NAME; at
/// first that is NAME itself.
#define KVN_TRACED_CALLS(TRACED, TRACED_DIRECTLY) \
    TRACED(CloseHandle)                           \
    TRACED(CopyFileW)                             \
    TRACED(CreateFileW)                           \
    TRACED(CreatePipe)                            \
    TRACED(CreateProcessW)                        \
    TRACED(FindNextFileW)                         \
    TRACED(GetExitCodeProcess)                    \
    TRACED(GetFinalPathNameByHandleW)             \
    TRACED(GetSystemDirectoryW)                   \
    TRACED(MoveFileExW)                           \
    TRACED(OpenProcess)                           \
    TRACED(ReadFile)                              \
    TRACED(SetHandleInformation)                  \
    TRACED(WaitForSingleObject)                   \
    TRACED(WriteFile)                             \
    TRACED_DIRECTLY(BCryptCloseAlgorithmProvider) \
    TRACED_DIRECTLY(BCryptCreateHash)             \
    TRACED_DIRECTLY(BCryptDestroyHash)            \
    TRACED_DIRECTLY(BCryptFinishHash)             \
    TRACED_DIRECTLY(BCryptGetProperty)            \
    TRACED_DIRECTLY(BCryptHashData)               \
    TRACED_DIRECTLY(BCryptOpenAlgorithmProvider)  \
    TRACED_DIRECTLY(WinHttpAddRequestHeaders)     \
    TRACED_DIRECTLY(WinHttpCloseHandle)           \
    TRACED_DIRECTLY(WinHttpConnect)               \
    TRACED_DIRECTLY(WinHttpOpen)                  \
    TRACED_DIRECTLY(WinHttpOpenRequest)           \
    TRACED_DIRECTLY(WinHttpQueryDataAvailable)    \
    TRACED_DIRECTLY(WinHttpQueryHeaders)          \
    TRACED_DIRECTLY(WinHttpReadData)              \
    TRACED_DIRECTLY(WinHttpReceiveResponse)       \
    TRACED_DIRECTLY(WinHttpSendRequest)           \
    TRACED_DIRECTLY(WinHttpSetOption)             \
    TRACED_DIRECTLY(WinHttpSetTimeouts)

#define KVN_DECLARE_TRACED(call) extern decltype(&::call) traced_##call;
extern "C" {
KVN_TRACED_CALLS(KVN_DECLARE_TRACED, KVN_DECLARE_TRACED)
}
#undef KVN_DECLARE_TRACED

namespace vorthmere::update::traces {

/// Replaces a call by another function for as long as the object lives.
template <typename Function>
class Replaced {
public:
    Replaced(Function& call, std::type_identity_t<Function> by) : call_(call), before_(std::exchange(call, by)) {}
    ~Replaced() {
        call_ = before_;
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

private:
    Function& call_;
    Function before_;
};

/// The calls that the replacements recorded, with their arguments, in order.
using Log = std::vector<std::string>;
[[nodiscard]] Log& log();

}  // namespace vorthmere::update::traces
