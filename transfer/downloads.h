#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "transfer/https_client.h"
#include "update/manifest.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Takes the next bytes of a response; returns true when they were stored.
using ChunkSink = std::function<bool(const char* bytes, std::uint64_t count)>;

/// Fetches the release manifest into memory and parses it.
///
/// @param url      https address of the manifest, which may have at most kMaxManifestBytes
/// @param manifest filled on success, not to be used after a failure
/// @param error    receives the sentence of a failure: of the request, of the body, or parseManifest()'s
[[nodiscard]] bool fetchManifest(std::wstring_view url, Manifest& manifest, std::wstring& error);

/// Downloads to a file, which is created or truncated.
///
/// @param url      https address
/// @param path     the file; on success it holds exactly the body, a failed download may leave a part of it
/// @param maxBytes largest accepted body, in bytes; the file never grows past it
/// @param progress called between reads; may be empty
/// @param error    receives the sentence of a failure: of the request, of the body, "Unable to create the temporary
///                 update archive." or "Unable to finish the temporary update archive."
[[nodiscard]] bool downloadHttpsFile(std::wstring_view url, const std::filesystem::path& path, std::uint64_t maxBytes,
                                     const ByteProgressCallback& progress, std::wstring& error);

/// Reads the body of an answered request.
///
/// @param request  as openHttpsRequest() left it
/// @param maxBytes largest accepted body, in bytes
/// @param sink     takes each chunk of at most 64 KiB; must not be empty
/// @param progress receives the bytes so far and the advertised length, 0 when none was; may be empty
/// @param error    receives the sentence of a failure, unless the sink left one of its own
/// @return true when the body ended where it was advertised to end, if it was. False with "The update download is
///         larger than the safety limit." (advertised, nothing is read then), "Unable to store the downloaded update."
///         (the sink failed, or the body grew past the limit), "The HTTPS update download did not match its advertised
///         size.", or, with the Windows error appended, "Unable to read the HTTPS update response" or "The HTTPS update
///         download ended unexpectedly".
[[nodiscard]] bool readResponseBody(const InternetHandle& request, std::uint64_t maxBytes, const ChunkSink& sink,
                                    const ByteProgressCallback& progress, std::wstring& error);

}  // namespace vorthmere::update
