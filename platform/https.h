#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/handle.h"

namespace vorthmere::update {

void closeInternetHandle(void* handle) noexcept;

/// A session, a connection or a request of the system's HTTP client (WinHTTP, synchronous). lastErrorNumber() tells why
/// a call failed. Close a request before its connection, and a connection before its session.
using InternetHandle = UniqueHandle<OpaqueHandleTraits<closeInternetHandle>>;

/// An address taken apart.
struct InternetAddress {
    bool isHttps = false;
    std::wstring host;
    std::uint16_t port = 0;
    std::wstring path;       ///< may be empty
    std::wstring extraInfo;  ///< query and fragment, with their "?" and "#"; may be empty
};

/// The longest wait of each step, in milliseconds.
struct InternetTimeouts {
    int resolve = 0;
    int connect = 0;
    int send = 0;
    int receive = 0;
};

/// Splits an address without decoding it (WinHttpCrackUrl).
///
/// @return false for a text that is no address; `parts` is untouched then
[[nodiscard]] bool crackAddress(const std::wstring& address, InternetAddress& parts);

/// Opens a session that uses the system's proxy settings (WinHttpOpen). Empty on failure.
[[nodiscard]] InternetHandle openSession(const wchar_t* userAgent);

/// Sets the longest waits of a session (WinHttpSetTimeouts). A failure goes unnoticed.
void setTimeouts(const InternetHandle& session, const InternetTimeouts& timeouts);

/// Names the host of the requests to come; sends nothing yet (WinHttpConnect). Empty on failure.
[[nodiscard]] InternetHandle connectTo(const InternetHandle& session, const std::wstring& host, std::uint16_t port);

/// Prepares a GET over TLS; sends nothing yet (WinHttpOpenRequest).
///
/// @param objectName path and query
/// @return empty on failure
[[nodiscard]] InternetHandle createSecureGet(const InternetHandle& connection, const std::wstring& objectName);

/// Makes a request return a redirect instead of following it (WinHttpSetOption). A failure goes unnoticed.
void disableRedirects(const InternetHandle& request);

/// Adds a header line, or replaces the one of the same name (WinHttpAddRequestHeaders). A failure goes unnoticed.
///
/// @param line ends in CR LF
void setHeader(const InternetHandle& request, const wchar_t* line);

/// Sends a request without a body (WinHttpSendRequest).
[[nodiscard]] bool sendRequest(const InternetHandle& request);

/// Waits for the headers of the answer (WinHttpReceiveResponse).
[[nodiscard]] bool receiveResponse(const InternetHandle& request);

/// Reads the answer's status (WinHttpQueryHeaders).
///
/// @return false when it cannot be read
[[nodiscard]] bool queryStatus(const InternetHandle& request, std::uint32_t& status);

/// Reads the length of the body that the answer's headers state, in bytes (WinHttpQueryHeaders).
///
/// @return false when they state none, or one of more than 32 bits
[[nodiscard]] bool queryContentLength(const InternetHandle& request, std::uint32_t& length);

/// Waits for the next bytes of the body and tells how many can be read (WinHttpQueryDataAvailable). 0 at its end.
[[nodiscard]] bool queryDataAvailable(const InternetHandle& request, std::uint32_t& available);

/// Reads the next bytes of the body (WinHttpReadData).
///
/// @param buffer takes up to `size` bytes
/// @param count  receives the number of bytes read
[[nodiscard]] bool readData(const InternetHandle& request, char* buffer, std::uint32_t size, std::uint32_t& count);

}  // namespace vorthmere::update
