#pragma once

#include <string>
#include <string_view>

#include "platform/https.h"

namespace vorthmere::update {

/// Sends one HTTPS GET and accepts no answer but status 200. Redirects are not followed, certificates are checked as
/// the platform does by default, nothing is retried.
///
/// @param address    https address with a host; port, path and query are taken from it
/// @param session, connection, request  empty holders; whatever they hold afterwards is the caller's to close, the
///                   request first, then the connection, then the session. Declared in this order, they do so
///                   themselves.
/// @param error      receives the sentence of a failure
/// @return true when the request was answered with status 200 and its body can be read. False with "The update URL is
///         not a valid HTTPS address.", "The update host returned HTTP N." (0 when the status cannot be read), or one
///         of "Unable to initialize the HTTPS update check", "Unable to connect to the update host", "Unable to create
///         the HTTPS update request", "The HTTPS update request failed" with the Windows error appended.
///
/// Blocks for at most 2.5 s each for resolving and connecting, 3 s for sending and 5 s for receiving.
[[nodiscard]] bool openHttpsRequest(std::wstring_view address, InternetHandle& session, InternetHandle& connection,
                                    InternetHandle& request, std::wstring& error);

/// Appends " (Windows error N)" with the calling thread's last error, which is read before anything else is done.
[[nodiscard]] std::wstring withWindowsError(std::wstring_view text);

}  // namespace vorthmere::update
