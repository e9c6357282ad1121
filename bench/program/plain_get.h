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

/// Downloads in the fewest calls: one session and one connection for everything, one buffer, and reads until the end of
/// a body.
class PlainGet {
public:
    /// @param address an https address; its host and port are used for all downloads
    explicit PlainGet(const std::wstring& address);

    /// Downloads the address's path followed by `name`, and returns the size of the body in bytes. Throws on failure.
    std::uint64_t get(const std::wstring& name, const Sink& sink);

private:
    update::InternetHandle session_;
    update::InternetHandle connection_;
    std::wstring path_;
    std::vector<char> buffer_;
};

}  // namespace vorthmere::bench
