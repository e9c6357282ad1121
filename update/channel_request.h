#pragma once

#include <cstdint>

#include "platform/https.h"

namespace vorthmere::update {

/// How the release channel is asked for a file.

inline constexpr const wchar_t* kUserAgent = L"KelvaneAlphaUpdater/1.0";

/// A header line, with its end.
inline constexpr const wchar_t* kNoCacheHeader = L"Cache-Control: no-cache\r\n";

inline constexpr std::uint32_t kStatusOk = 200;  ///< the only status of an answer that is used

inline constexpr InternetTimeouts kChannelTimeouts{.resolve = 2500, .connect = 2500, .send = 3000, .receive = 5000};

}  // namespace vorthmere::update
