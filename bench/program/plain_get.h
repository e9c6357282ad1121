#pragma once

#include <windows.h>
#include <winhttp.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "transfer/https_client.h"

namespace vorthmere::bench {

/// Takes the next bytes of a body, at most 64 KiB.
using Sink = std::function<void(const char* bytes, DWORD count)>;

/// Reads bodies in the fewest calls: one session and one connection for all of them, and reads into one buffer until
/// there is no more.
class PlainGet {
public:
    /// @param address an https address; the host and port of everything that is got
    explicit PlainGet(const std::wstring& address);

    /// Gets the object at the address's path followed by `name` and returns the bytes of its body.
    std::uint64_t get(const std::wstring& name, const Sink& sink);

private:
    update::InternetHandle session_;
    update::InternetHandle connection_;
    std::wstring path_;
    std::vector<char> buffer_;
};

}  // namespace vorthmere::bench
