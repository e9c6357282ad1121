#include "bench/program/plain_get.h"

#include "bench/program/require.h"

namespace vorthmere::bench {
namespace {

constexpr DWORD kBufferBytes = 65536;
constexpr DWORD kRequested = static_cast<DWORD>(-1);
constexpr DWORD kStatusOk = 200;

DWORD queryStatus(HINTERNET request) {
    DWORD status = 0;
    DWORD size = sizeof(status);
    require(WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                                WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX),
            "reading the status");
    return status;
}

}  // namespace

PlainGet::PlainGet(const std::wstring& address) : buffer_(kBufferBytes) {
    URL_COMPONENTS parts{};
    parts.dwStructSize = sizeof(parts);
    parts.dwHostNameLength = kRequested;
    parts.dwUrlPathLength = kRequested;
    require(WinHttpCrackUrl(address.c_str(), 0, 0, &parts), "reading the address");
    path_.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
    session_.reset(
        WinHttpOpen(L"kvn_bench", WINHTTP_ACCESS_TYPE_NO_PROXY, WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, 0));
    require(static_cast<bool>(session_), "opening a session");
    const std::wstring host(parts.lpszHostName, parts.dwHostNameLength);
    connection_.reset(WinHttpConnect(session_.get(), host.c_str(), parts.nPort, 0));
    require(static_cast<bool>(connection_), "naming the host");
}

std::uint64_t PlainGet::get(const std::wstring& name, const Sink& sink) {
    const update::InternetHandle request(WinHttpOpenRequest(connection_.get(), L"GET", (path_ + name).c_str(), nullptr,
                                                            WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                                                            WINHTTP_FLAG_SECURE));
    require(static_cast<bool>(request), "opening a request");
    require(WinHttpSendRequest(request.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, 0, 0) &&
                WinHttpReceiveResponse(request.get(), nullptr),
            "a request");
    require(queryStatus(request.get()) == kStatusOk, "a request (by its status)");
    std::uint64_t received = 0;
    while (true) {
        DWORD count = 0;
        require(WinHttpReadData(request.get(), buffer_.data(), kBufferBytes, &count), "reading a body");
        if (count == 0) return received;
        sink(buffer_.data(), count);
        received += count;
    }
}

}  // namespace vorthmere::bench
