#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/handle.h"

namespace vorthmere::update {

void closeInternetHandle(void* handle) noexcept;

/// A session, a connection or a request of the system's HTTP client (WinHTTP, synchronous). After a failed call
/// lastErrorNumber() tells why.
using InternetHandle = UniqueHandle<OpaqueHandleTraits<closeInternetHandle>>;

/// The parts of an address that a request needs.
struct InternetAddress {
    bool isHttps = false;
    std::wstring host;
    std::uint16_t port = 0;
    std::wstring path;       ///< may be empty
    std::wstring extraInfo;  ///< query and fragment, with their "?" and "#"; may be empty
};

/// Longest waits, in milliseconds.
struct InternetTimeouts {
    int resolve = 0;
    int connect = 0;
    int send = 0;
    int receive = 0;
};

/// Splits an address without decoding it (WinHttpCrackUrl).
///
/// @return false for a text that is no address
[[nodiscard]] bool crackAddress(const std::wstring& address, InternetAddress& parts);

/// Opens a session that finds the system's proxy by itself (WinHttpOpen). Empty on failure.
[[nodiscard]] InternetHandle openSession(const wchar_t* userAgent);

/// Sets the waits of a session (WinHttpSetTimeouts).
void setTimeouts(const InternetHandle& session, const InternetTimeouts& timeouts);

/// Names the host of the requests to come (WinHttpConnect). Empty on failure.
[[nodiscard]] InternetHandle connectTo(const InternetHandle& session, const std::wstring& host, std::uint16_t port);

/// Prepares a GET over TLS (WinHttpOpenRequest). Empty on failure.
[[nodiscard]] InternetHandle createSecureGet(const InternetHandle& connection, const std::wstring& objectName);

/// Makes a request give back a redirect instead of following it (WinHttpSetOption).
void disableRedirects(const InternetHandle& request);

/// Adds a header line, which ends in CR LF, or replaces the one of its name (WinHttpAddRequestHeaders).
void setHeader(const InternetHandle& request, const wchar_t* line);

/// Sends a request without a body (WinHttpSendRequest).
[[nodiscard]] bool sendRequest(const InternetHandle& request);

/// Waits for the answer's headers (WinHttpReceiveResponse).
[[nodiscard]] bool receiveResponse(const InternetHandle& request);

/// The answer's status (WinHttpQueryHeaders); false when it cannot be read.
[[nodiscard]] bool queryStatus(const InternetHandle& request, std::uint32_t& status);

/// The answer's length as its headers tell it (WinHttpQueryHeaders); false when they do not, or by a number of more
/// than 32 bits.
[[nodiscard]] bool queryContentLength(const InternetHandle& request, std::uint32_t& length);

/// How many bytes of the body can be read at once; 0 at its end (WinHttpQueryDataAvailable).
[[nodiscard]] bool queryDataAvailable(const InternetHandle& request, std::uint32_t& available);

/// Reads the next bytes of the body (WinHttpReadData).
///
/// @param buffer takes up to `size` bytes
/// @param count  receives how many were read
[[nodiscard]] bool readData(const InternetHandle& request, char* buffer, std::uint32_t size, std::uint32_t& count);

}  // namespace vorthmere::update
