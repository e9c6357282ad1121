#pragma once

#include <string>
#include <string_view>

#include "platform/https.h"

namespace vorthmere::update {

/// Sends one HTTPS GET and accepts only an answer with status 200. Redirects are not followed, certificates are checked
/// by the platform's defaults, and nothing is retried.
///
/// @param address    https address with a host; a port, a path and a query may follow
/// @param session, connection, request  empty on entry; owned by the caller, also after a failure. The request must
///                   close first, then the connection, then the session: declare them in the order of the parameters.
/// @param error      receives the sentence of a failure
/// @return true when the answer has status 200 and its body can be read. False with "The update URL is not a valid
///         HTTPS address.", "The update host returned HTTP N." (0 when the status cannot be read), or, followed by the
///         Windows error, "Unable to initialize the HTTPS update check", "Unable to connect to the update host",
///         "Unable to create the HTTPS update request" or "The HTTPS update request failed".
///
/// Waits at most 2.5 s to resolve the name, 2.5 s to connect, 3 s for each send and 5 s for each receive, also while
/// the body is read.
[[nodiscard]] bool openHttpsRequest(std::wstring_view address, InternetHandle& session, InternetHandle& connection,
                                    InternetHandle& request, std::wstring& error);

/// Appends " (Windows error N)" with the calling thread's last error, which it reads first.
[[nodiscard]] std::wstring withWindowsError(std::wstring_view text);

}  // namespace vorthmere::update
