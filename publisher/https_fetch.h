#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "publisher/release_content.h"

namespace vorthmere::publish {

/// What a server answered.
struct HttpsAnswer {
    unsigned status = 0;          ///< 0 when there was no answer
    std::string cacheControl;     ///< the header's value; empty without one
    std::string contentEncoding;  ///< likewise
};

/// Sends one GET as the updater does: over HTTPS only, without following redirects, with the same waits and headers.
/// Several threads may call this at once.
///
/// @param caFile   certificates to trust instead of the system's; empty for the system's. Windows has no such choice.
/// @param maxBytes largest accepted body
/// @param sink     takes the body of an answer with status 200
/// @param error    receives one sentence when there was no answer, or its body is too large or breaks off
/// @return true when the server answered, with any status
[[nodiscard]] bool fetchHttps(const std::string& address, const std::filesystem::path& caFile, std::uint64_t maxBytes,
                              const ContentSink& sink, HttpsAnswer& answer, std::string& error);

}  // namespace vorthmere::publish
