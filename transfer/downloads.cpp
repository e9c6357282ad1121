#include "transfer/downloads.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "platform/streams.h"
#include "update/failing.h"
#include "update/limits.h"
#include "update/text.h"

namespace vorthmere::update {
namespace {

constexpr std::uint32_t kReadBufferBytes = 65536;
constexpr std::size_t kUsualManifestBytes = 1024;

std::optional<std::uint32_t> advertisedLength(const InternetHandle& request) {
    std::uint32_t length = 0;
    return queryContentLength(request, length) ? std::optional(length) : std::nullopt;
}

/// One answered request. The handles close in the right order, the request first.
struct Exchange {
    InternetHandle session;
    InternetHandle connection;
    InternetHandle request;

    bool open(std::wstring_view url, std::wstring& error) {
        return openHttpsRequest(url, session, connection, request, error);
    }
};

}  // namespace

bool readResponseBody(const InternetHandle& request, std::uint64_t maxBytes, const ChunkSink& sink,
                      const ByteProgressCallback& progress, std::wstring& error) {
    const std::optional<std::uint32_t> advertised = advertisedLength(request);
    if (advertised && *advertised > maxBytes)
        return fail(error, L"The update download is larger than the safety limit.");

    std::vector<char> buffer(kReadBufferBytes);
    std::uint64_t received = 0;
    while (true) {
        std::uint32_t available = 0;
        if (!queryDataAvailable(request, available))
            return fail(error, withWindowsError(L"Unable to read the HTTPS update response"));
        if (available == 0) break;

        while (available > 0) {
            std::uint32_t count = 0;
            if (!readData(request, buffer.data(), std::min(available, kReadBufferBytes), count) || count == 0)
                return fail(error, withWindowsError(L"The HTTPS update download ended unexpectedly"));
            received += count;
            if (received > maxBytes || !sink(buffer.data(), count)) {
                if (error.empty()) error = L"Unable to store the downloaded update.";
                return false;
            }
            if (progress) progress(received, advertised.value_or(0));
            available -= count;
        }
    }
    if (advertised && received != *advertised)
        return fail(error, L"The HTTPS update download did not match its advertised size.");
    return true;
}

bool fetchManifest(std::wstring_view url, Manifest& manifest, std::wstring& error) {
    Exchange exchange;
    if (!exchange.open(url, error)) return false;

    std::string text;
    text.reserve(kUsualManifestBytes);
    const auto append = [&text](const char* bytes, std::uint64_t count) {
        text.append(bytes, static_cast<std::size_t>(count));
        return true;
    };
    if (!readResponseBody(exchange.request, kMaxManifestBytes, append, {}, error)) return false;

    std::string fault;
    return parseManifest(text, manifest, fault) || fail(error, widen(fault));
}

bool downloadHttpsFile(std::wstring_view url, const std::filesystem::path& path, std::uint64_t maxBytes,
                       const ByteProgressCallback& progress, std::wstring& error) {
    Exchange exchange;
    if (!exchange.open(url, error)) return false;

    std::error_code failure;
    FileHandle file = createToWrite(path, failure);
    if (failure) return fail(error, L"Unable to create the temporary update archive.");
    const auto write = [&file](const char* bytes, std::uint64_t count) {
        return !writeBytes(file, bytes, static_cast<std::size_t>(count));
    };
    const bool complete = readResponseBody(exchange.request, maxBytes, write, progress, error);
    failure = closeFile(std::move(file));
    if (complete && !failure) return true;
    if (error.empty()) error = L"Unable to finish the temporary update archive.";
    return false;
}

}  // namespace vorthmere::update
