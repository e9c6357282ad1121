#include "transfer/downloads.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <vector>

#include "platform/text.h"

namespace vorthmere::update {
namespace {

constexpr DWORD kReadBufferBytes = 65536;
constexpr std::size_t kUsualManifestBytes = 1024;

std::optional<DWORD> queryAdvertisedLength(HINTERNET request) {
    DWORD length = 0;
    DWORD size = sizeof(length);
    if (!WinHttpQueryHeaders(request, WINHTTP_QUERY_CONTENT_LENGTH | WINHTTP_QUERY_FLAG_NUMBER,
                             WINHTTP_HEADER_NAME_BY_INDEX, &length, &size, WINHTTP_NO_HEADER_INDEX))
        return std::nullopt;
    return length;
}

}  // namespace

bool readResponseBody(HINTERNET request, std::uint64_t maxBytes, const ChunkSink& sink,
                      const ByteProgressCallback& progress, std::wstring& error) {
    const auto fail = [&error](std::wstring sentence) {
        error = std::move(sentence);
        return false;
    };

    const std::optional<DWORD> advertised = queryAdvertisedLength(request);
    if (advertised && *advertised > maxBytes) return fail(L"The update download is larger than the safety limit.");

    std::vector<char> buffer(kReadBufferBytes);
    std::uint64_t received = 0;
    while (true) {
        DWORD available = 0;
        if (!WinHttpQueryDataAvailable(request, &available))
            return fail(withWindowsError(L"Unable to read the HTTPS update response"));
        if (available == 0) break;

        while (available > 0) {
            DWORD count = 0;
            if (!WinHttpReadData(request, buffer.data(), std::min(available, kReadBufferBytes), &count) || count == 0)
                return fail(withWindowsError(L"The HTTPS update download ended unexpectedly"));
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
        return fail(L"The HTTPS update download did not match its advertised size.");
    return true;
}

bool fetchManifest(std::wstring_view url, Manifest& manifest, std::wstring& error) {
    InternetHandle session;
    InternetHandle connection;
    InternetHandle request;
    if (!openHttpsRequest(url, session, connection, request, error)) return false;

    std::string text;
    text.reserve(kUsualManifestBytes);
    const auto append = [&text](const char* bytes, std::uint64_t count) {
        text.append(bytes, static_cast<std::size_t>(count));
        return true;
    };
    if (!readResponseBody(request.get(), kMaxManifestBytes, append, {}, error)) return false;

    std::string fault;
    if (!parseManifest(text, manifest, fault)) {
        error = widen(fault);
        return false;
    }
    return true;
}

bool downloadHttpsFile(std::wstring_view url, const std::filesystem::path& path, std::uint64_t maxBytes,
                       const ByteProgressCallback& progress, std::wstring& error) {
    InternetHandle session;
    InternetHandle connection;
    InternetHandle request;
    if (!openHttpsRequest(url, session, connection, request, error)) return false;

    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file) {
        error = L"Unable to create the temporary update archive.";
        return false;
    }
    const auto write = [&file](const char* bytes, std::uint64_t count) {
        file.write(bytes, static_cast<std::streamsize>(count));
        return file.good();
    };
    const bool complete = readResponseBody(request.get(), maxBytes, write, progress, error);
    file.close();
    if (complete && file) return true;
    if (error.empty()) error = L"Unable to finish the temporary update archive.";
    return false;
}

}  // namespace vorthmere::update
