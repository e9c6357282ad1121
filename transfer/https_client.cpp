#include "transfer/https_client.h"

#include "platform/failure.h"
#include "update/channel_request.h"
#include "update/failing.h"

namespace vorthmere::update {
namespace {

/// What the host is asked for: path and query, unchanged.
std::wstring objectNameOf(const InternetAddress& address) {
    const std::wstring name = address.path + address.extraInfo;
    return name.empty() ? L"/" : name;
}

}  // namespace

std::wstring withWindowsError(std::wstring_view text) {
    const std::uint32_t number = lastErrorNumber();
    return std::wstring(text) + L" (Windows error " + std::to_wstring(number) + L")";
}

bool openHttpsRequest(std::wstring_view address, InternetHandle& session, InternetHandle& connection,
                      InternetHandle& request, std::wstring& error) {
    InternetAddress target;
    if (!crackAddress(std::wstring(address), target) || !target.isHttps || target.host.empty())
        return fail(error, L"The update URL is not a valid HTTPS address.");

    session = openSession(kUserAgent);
    if (!session) return fail(error, withWindowsError(L"Unable to initialize the HTTPS update check"));
    setTimeouts(session, kChannelTimeouts);

    connection = connectTo(session, target.host, target.port);
    if (!connection) return fail(error, withWindowsError(L"Unable to connect to the update host"));

    request = createSecureGet(connection, objectNameOf(target));
    if (!request) return fail(error, withWindowsError(L"Unable to create the HTTPS update request"));
    disableRedirects(request);
    setHeader(request, kNoCacheHeader);

    if (!sendRequest(request) || !receiveResponse(request))
        return fail(error, withWindowsError(L"The HTTPS update request failed"));

    std::uint32_t status = 0;
    if (!queryStatus(request, status)) status = 0;
    if (status == kStatusOk) return true;
    return fail(error, L"The update host returned HTTP " + std::to_wstring(status) + L".");
}

}  // namespace vorthmere::update
