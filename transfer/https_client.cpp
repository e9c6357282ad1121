#include "transfer/https_client.h"

namespace vorthmere::update {
namespace {

constexpr const wchar_t* kUserAgent = L"KelvaneAlphaUpdater/1.0";
constexpr const wchar_t* kNoCacheHeader = L"Cache-Control: no-cache\r\n";

constexpr int kResolveTimeoutMs = 2500;
constexpr int kConnectTimeoutMs = 2500;
constexpr int kSendTimeoutMs = 3000;
constexpr int kReceiveTimeoutMs = 5000;

constexpr DWORD kHeaderIsTerminated = static_cast<DWORD>(-1);

struct HttpsAddress {
    std::wstring host;
    INTERNET_PORT port = 0;
    std::wstring objectName;
};

bool crackAddress(const std::wstring& address, HttpsAddress& out) {
    constexpr DWORD requested = static_cast<DWORD>(-1);
    URL_COMPONENTS parts{};
    parts.dwStructSize = sizeof(parts);
    parts.dwHostNameLength = requested;
    parts.dwUrlPathLength = requested;
    parts.dwExtraInfoLength = requested;
    if (!WinHttpCrackUrl(address.c_str(), 0, 0, &parts)) return false;
    if (parts.nScheme != INTERNET_SCHEME_HTTPS || parts.dwHostNameLength == 0) return false;
    out.host.assign(parts.lpszHostName, parts.dwHostNameLength);
    out.port = parts.nPort;
    if (parts.dwUrlPathLength > 0) out.objectName.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
    if (parts.dwExtraInfoLength > 0) out.objectName.append(parts.lpszExtraInfo, parts.dwExtraInfoLength);
    if (out.objectName.empty()) out.objectName = L"/";
    return true;
}

/// The request's status, or 0 when it cannot be read.
DWORD queryStatus(HINTERNET request) {
    DWORD status = 0;
    DWORD size = sizeof(status);
    const BOOL known = WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                                           WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX);
    return known ? status : 0;
}

}  // namespace

std::wstring withWindowsError(std::wstring_view text) {
    const DWORD code = GetLastError();
    return std::wstring(text) + L" (Windows error " + std::to_wstring(code) + L")";
}

bool openHttpsRequest(std::wstring_view address, InternetHandle& session, InternetHandle& connection,
                      InternetHandle& request, std::wstring& error) {
    const auto fail = [&error](std::wstring sentence) {
        error = std::move(sentence);
        return false;
    };

    HttpsAddress target;
    if (!crackAddress(std::wstring(address), target)) return fail(L"The update URL is not a valid HTTPS address.");

    session.reset(WinHttpOpen(kUserAgent, WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, WINHTTP_NO_PROXY_NAME,
                              WINHTTP_NO_PROXY_BYPASS, 0));
    if (!session) return fail(withWindowsError(L"Unable to initialize the HTTPS update check"));
    WinHttpSetTimeouts(session.get(), kResolveTimeoutMs, kConnectTimeoutMs, kSendTimeoutMs, kReceiveTimeoutMs);

    connection.reset(WinHttpConnect(session.get(), target.host.c_str(), target.port, 0));
    if (!connection) return fail(withWindowsError(L"Unable to connect to the update host"));

    request.reset(WinHttpOpenRequest(connection.get(), L"GET", target.objectName.c_str(), nullptr, WINHTTP_NO_REFERER,
                                     WINHTTP_DEFAULT_ACCEPT_TYPES, WINHTTP_FLAG_SECURE));
    if (!request) return fail(withWindowsError(L"Unable to create the HTTPS update request"));

    DWORD disabledFeatures = WINHTTP_DISABLE_REDIRECTS;
    WinHttpSetOption(request.get(), WINHTTP_OPTION_DISABLE_FEATURE, &disabledFeatures, sizeof(disabledFeatures));
    WinHttpAddRequestHeaders(request.get(), kNoCacheHeader, kHeaderIsTerminated,
                             WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE);

    if (!WinHttpSendRequest(request.get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, 0, 0) ||
        !WinHttpReceiveResponse(request.get(), nullptr))
        return fail(withWindowsError(L"The HTTPS update request failed"));

    const DWORD status = queryStatus(request.get());
    if (status != HTTP_STATUS_OK) return fail(L"The update host returned HTTP " + std::to_wstring(status) + L".");
    return true;
}

}  // namespace vorthmere::update
