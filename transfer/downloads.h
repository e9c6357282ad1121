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

/// Stores the next bytes of a body; returns false on failure.
using ChunkSink = std::function<bool(const char* bytes, std::uint64_t count)>;

/// Fetches the manifest into memory and parses it.
///
/// @param url      https address of the manifest, which has at most kMaxManifestBytes
/// @param manifest filled on success, not to be used after a failure
/// @param error    empty on entry; receives the sentence of a failure: openHttpsRequest()'s, readResponseBody()'s or
///                 parseManifest()'s
[[nodiscard]] bool fetchManifest(std::wstring_view url, Manifest& manifest, std::wstring& error);

/// Downloads to a file, which is created or emptied.
///
/// @param url      https address
/// @param path     the file; on success it holds exactly the body, after a failure it may hold a part of it
/// @param maxBytes largest accepted body, in bytes; the file never grows larger
/// @param progress called after each read; may be empty
/// @param error    empty on entry; receives the sentence of a failure: openHttpsRequest()'s, readResponseBody()'s,
///                 "Unable to create the temporary update archive." or "Unable to finish the temporary update archive."
[[nodiscard]] bool downloadHttpsFile(std::wstring_view url, const std::filesystem::path& path, std::uint64_t maxBytes,
                                     const ByteProgressCallback& progress, std::wstring& error);

/// Reads the body of an answered request.
///
/// @param request  as openHttpsRequest() left it
/// @param maxBytes largest accepted body, in bytes
/// @param sink     stores each chunk of at most 64 KiB; must not be empty
/// @param progress receives the bytes so far and the advertised length, 0 when there is none; may be empty
/// @param error    empty on entry; receives the sentence of a failure, unless the sink has stored one
/// @return true when the whole body was stored, and it had the advertised length, if there is one. False with "The
///         update download is larger than the safety limit." (by its advertised length, nothing is read then), "Unable
///         to store the downloaded update." (the sink failed, or the body grew larger than the limit), "The HTTPS
///         update download did not match its advertised size.", or, followed by the Windows error, "Unable to read the
///         HTTPS update response" or "The HTTPS update download ended unexpectedly".
[[nodiscard]] bool readResponseBody(const InternetHandle& request, std::uint64_t maxBytes, const ChunkSink& sink,
                                    const ByteProgressCallback& progress, std::wstring& error);

}  // namespace vorthmere::update
