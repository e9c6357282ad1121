#include "publisher/https_fetch.h"

#include <windows.h>

#include <winhttp.h>

#include "publisher/interruption.h"
#include "transfer/downloads.h"
#include "transfer/https_client.h"
#include "update/ascii.h"
#include "update/channel_request.h"
#include "update/text.h"

namespace vorthmere::publish {
namespace {

std::string headerOf(const update::InternetHandle& request, DWORD header) {
    DWORD bytes = 0;
    WinHttpQueryHeaders(request.get(), header, WINHTTP_HEADER_NAME_BY_INDEX, nullptr, &bytes, WINHTTP_NO_HEADER_INDEX);
    std::wstring value(bytes / sizeof(wchar_t), L'\0');
    if (value.empty() || !WinHttpQueryHeaders(request.get(), header, WINHTTP_HEADER_NAME_BY_INDEX, value.data(), &bytes,
                                              WINHTTP_NO_HEADER_INDEX))
        return {};
    value.resize(bytes / sizeof(wchar_t));
    return update::toAsciiLower(update::narrow(value));
}

}  // namespace

// Uses the updater's own client, which trusts the certificates that Windows trusts.
bool fetchHttps(const std::string& address, const std::filesystem::path&, std::uint64_t maxBytes,
                const ContentSink& sink, HttpsAnswer& answer, std::string& error) {
    update::InternetHandle session;
    update::InternetHandle connection;
    update::InternetHandle request;
    std::wstring fault;
    answer = {};
    std::uint32_t status = 0;
    const bool isFound = update::openHttpsRequest(update::widen(address), session, connection, request, fault);
    if (request && update::queryStatus(request, status)) answer.status = status;
    if (!isFound) {
        error = update::narrow(fault);
        return answer.status != 0 && answer.status != update::kStatusOk;
    }
    answer.cacheControl = headerOf(request, WINHTTP_QUERY_CACHE_CONTROL);
    answer.contentEncoding = headerOf(request, WINHTTP_QUERY_CONTENT_ENCODING);
    const update::ChunkSink take = [&sink](const char* bytes, std::uint64_t count) {
        return !isInterrupted() && sink({bytes, static_cast<std::size_t>(count)});
    };
    if (update::readResponseBody(request, maxBytes, take, {}, fault)) return true;
    error = isInterrupted() ? interruptionSentence() : update::narrow(fault);
    return false;
}

}  // namespace vorthmere::publish
