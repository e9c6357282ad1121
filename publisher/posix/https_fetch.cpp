#include "publisher/https_fetch.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "publisher/interruption.h"
#include "update/ascii.h"
#include "update/channel_request.h"
#include "update/text.h"

namespace vorthmere::publish {
namespace {

constexpr long kConnectMilliseconds = update::kChannelTimeouts.resolve + update::kChannelTimeouts.connect;
constexpr long kSilentSeconds = update::kChannelTimeouts.receive / 1000;

struct CurlRelease {
    void operator()(CURL* handle) const {
        curl_easy_cleanup(handle);
    }
    void operator()(curl_slist* list) const {
        curl_slist_free_all(list);
    }
};

/// A running request.
struct Transfer {
    CURL* handle;
    std::uint64_t maxBytes;
    const ContentSink& sink;
    HttpsAnswer& answer;
    std::uint64_t received = 0;
    std::string fault = {};
};

/// The handle keeps its connection for the thread's next request.
CURL* handleOfThread() {
    static const CURLcode prepared = curl_global_init(CURL_GLOBAL_DEFAULT);
    thread_local const std::unique_ptr<CURL, CurlRelease> handle(prepared == CURLE_OK ? curl_easy_init() : nullptr);
    if (!handle) throw std::runtime_error("The HTTPS client cannot be started.");
    curl_easy_reset(handle.get());
    return handle.get();
}

std::size_t takeBody(char* bytes, std::size_t, std::size_t count, void* context) {
    auto& transfer = *static_cast<Transfer*>(context);
    long status = 0;
    curl_easy_getinfo(transfer.handle, CURLINFO_RESPONSE_CODE, &status);
    if (status != update::kStatusOk) return count;
    transfer.received += count;
    if (isInterrupted())
        transfer.fault = interruptionSentence();
    else if (transfer.received > transfer.maxBytes)
        transfer.fault = "it is larger than " + std::to_string(transfer.maxBytes) + " bytes.";
    else if (transfer.sink({bytes, count}))
        return count;
    return 0;
}

std::string valueOf(std::string_view line) {
    line.remove_prefix(line.find(':') + 1);
    const std::size_t first = std::min(line.find_first_not_of(" \t"), line.size());
    const std::size_t last = line.find_last_not_of(" \t\r\n");
    return last == std::string_view::npos || last < first ? "" : std::string(line.substr(first, last - first + 1));
}

std::size_t takeHeader(char* bytes, std::size_t, std::size_t count, void* context) {
    auto& transfer = *static_cast<Transfer*>(context);
    const std::string line = update::toAsciiLower({bytes, count});
    if (line.starts_with("cache-control:")) transfer.answer.cacheControl = valueOf(line);
    if (line.starts_with("content-encoding:")) transfer.answer.contentEncoding = valueOf(line);
    return count;
}

void prepare(CURL* handle, const std::string& address, const std::filesystem::path& caFile, Transfer& transfer) {
    curl_easy_setopt(handle, CURLOPT_URL, address.c_str());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "https");
    curl_easy_setopt(handle, CURLOPT_USERAGENT, update::narrow(update::kUserAgent).c_str());
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, kConnectMilliseconds);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, kSilentSeconds);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, takeHeader);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, takeBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &transfer);
    if (!caFile.empty()) {
        curl_easy_setopt(handle, CURLOPT_CAINFO, caFile.c_str());
        curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);
    }
}

}  // namespace

bool fetchHttps(const std::string& address, const std::filesystem::path& caFile, std::uint64_t maxBytes,
                const ContentSink& sink, HttpsAnswer& answer, std::string& error) {
    CURL* const handle = handleOfThread();
    answer = {};
    Transfer transfer{handle, maxBytes, sink, answer};
    prepare(handle, address, caFile, transfer);
    std::string header = update::narrow(update::kNoCacheHeader);
    header.resize(header.find('\r'));  // libcurl ends it itself
    const std::unique_ptr<curl_slist, CurlRelease> headers(curl_slist_append(nullptr, header.c_str()));
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get());
    const CURLcode result = curl_easy_perform(handle);
    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    answer.status = static_cast<unsigned>(status);
    if (result == CURLE_OK) return true;
    error = transfer.fault.empty() ? std::string(curl_easy_strerror(result)) + "." : transfer.fault;
    return false;
}

}  // namespace vorthmere::publish
