#include "platform/https.h"

#include <windows.h>
// windows.h has to come first.
#include <winhttp.h>

#include "platform/windows/windows_result.h"

namespace vorthmere::update {
namespace {

constexpr DWORD kTextIsTerminated = static_cast<DWORD>(-1);

bool queryNumber(const InternetHandle& request, DWORD header, std::uint32_t& number) {
    DWORD value = 0;
    DWORD size = sizeof(value);
    if (!WinHttpQueryHeaders(request.get(), header | WINHTTP_QUERY_FLAG_NUMBER, WINHTTP_HEADER_NAME_BY_INDEX, &value,
                             &size, WINHTTP_NO_HEADER_INDEX))
        return false;
    number = value;
    return true;
}

}  // namespace

void closeInternetHandle(void* handle) noexcept {
    closeQuietly(handle, WinHttpCloseHandle);
}

bool crackAddress(const std::wstring& address, InternetAddress& parts) {
    constexpr DWORD requested = static_cast<DWORD>(-1);
    URL_COMPONENTS cracked{};
    cracked.dwStructSize = sizeof(cracked);
    cracked.dwHostNameLength = requested;
    cracked.dwUrlPathLength = requested;
    cracked.dwExtraInfoLength = requested;
    if (!WinHttpCrackUrl(address.c_str(), 0, 0, &cracked)) return false;
    const auto text = [](const wchar_t* characters, DWORD length) {
        return length > 0 ? std::wstring(characters, length) : std::wstring();
    };
    parts = {cracked.nScheme == INTERNET_SCHEME_HTTPS, text(cracked.lpszHostName, cracked.dwHostNameLength),
             cracked.nPort, text(cracked.lpszUrlPath, cracked.dwUrlPathLength),
             text(cracked.lpszExtraInfo, cracked.dwExtraInfoLength)};
    return true;
}

InternetHandle openSession(const wchar_t* userAgent) {
    return InternetHandle(
        WinHttpOpen(userAgent, WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, 0));
}

void setTimeouts(const InternetHandle& session, const InternetTimeouts& timeouts) {
    WinHttpSetTimeouts(session.get(), timeouts.resolve, timeouts.connect, timeouts.send, timeouts.receive);
}

InternetHandle connectTo(const InternetHandle& session, const std::wstring& host, std::uint16_t port) {
    return InternetHandle(WinHttpConnect(session.get(), host.c_str(), port, 0));
}

InternetHandle createSecureGet(const InternetHandle& connection, const std::wstring& objectName) {
    return InternetHandle(WinHttpOpenRequest(connection.get(), L"GET", objectName.c_str(), nullptr, WINHTTP_NO_REFERER,
                                             WINHTTP_DEFAULT_ACCEPT_TYPES, WINHTTP_FLAG_SECURE));
}

void disableRedirects(const InternetHandle& request) {
    DWORD disabledFeatures = WINHTTP_DISABLE_REDIRECTS;
    WinHttpSetOption(request.get(), WINHTTP_OPTION_DISABLE_FEATURE, &disabledFeatures, sizeof(disabledFeatures));
}

void setHeader(const InternetHandle& request, const wchar_t* line) {
    WinHttpAddRequestHeaders(request.get(), line, kTextIsTerminated,
                             WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE);
}

bool sendRequest(const InternetHandle& request) {
    return WinHttpSendRequest(request.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, 0, 0);
}

bool receiveResponse(const InternetHandle& request) {
    return WinHttpReceiveResponse(request.get(), nullptr);
}

bool queryStatus(const InternetHandle& request, std::uint32_t& status) {
    return queryNumber(request, WINHTTP_QUERY_STATUS_CODE, status);
}

bool queryContentLength(const InternetHandle& request, std::uint32_t& length) {
    return queryNumber(request, WINHTTP_QUERY_CONTENT_LENGTH, length);
}

bool queryDataAvailable(const InternetHandle& request, std::uint32_t& available) {
    DWORD bytes = 0;
    if (!WinHttpQueryDataAvailable(request.get(), &bytes)) return false;
    available = bytes;
    return true;
}

bool readData(const InternetHandle& request, char* buffer, std::uint32_t size, std::uint32_t& count) {
    DWORD bytes = 0;
    if (!WinHttpReadData(request.get(), buffer, size, &bytes)) return false;
    count = bytes;
    return true;
}

}  // namespace vorthmere::update
