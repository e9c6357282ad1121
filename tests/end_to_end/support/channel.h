#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/end_to_end/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::end_to_end {

/// Where the test channel is: the release channel of the build, which is on this machine.
[[nodiscard]] unsigned channelPort();

/// "host:port" of the channel's address.
[[nodiscard]] std::string channelAuthority();

/// The path in the address of a file of the channel, and the whole address.
[[nodiscard]] std::string channelPath(const std::string& name);
[[nodiscard]] std::string channelUrl(const std::string& name);

/// The name of the update object with this content.
[[nodiscard]] std::string objectName(const std::string& content);

/// One request as a server saw it.
struct ChannelRequest {
    std::string method;
    std::string path;
    std::string userAgent;
    std::string cacheControl;

    friend bool operator==(const ChannelRequest&, const ChannelRequest&) = default;
};

/// The one request that the updater makes for a file.
[[nodiscard]] ChannelRequest requestFor(const std::string& name);

/// The folder of the certificates of this run of the tests. The first test that asks has them made, and
/// every one has the good authority trusted in the tests' Wine prefix.
///
/// @throws std::runtime_error when one of these is not possible
[[nodiscard]] std::filesystem::path channelCertificates();

/// nginx, serving a folder. It ends at the end of this object's life.
class PlainChannel {
public:
    explicit PlainChannel(const std::filesystem::path& channelFolder);
    PlainChannel(const PlainChannel&) = delete;
    PlainChannel& operator=(const PlainChannel&) = delete;
    ~PlainChannel();

    /// All requests up to now.
    [[nodiscard]] std::vector<ChannelRequest> requests() const;

private:
    update::testing::TemporaryFolder run_;
};

/// A server that gives the answers that a test asks for; its commands and answers are described in
/// tests/end_to_end/support/fault_server.py. A request that is not expected, or an expected one that never comes,
/// fails the test at the end of this object's life.
class FaultServer {
public:
    FaultServer();
    FaultServer(const FaultServer&) = delete;
    FaultServer& operator=(const FaultServer&) = delete;
    ~FaultServer();

    /// Expects one more request for a path and says how it is answered. Several answers for a path serve its requests
    /// in their order.
    void answer(const std::string& path, const std::string& how);

    void useCertificate(const std::string& name);
    void setHandshake(const std::string& mode);

    /// Returns when so many requests for a path have arrived since the start, and fails the test when they do not.
    void waitForRequests(const std::string& path, std::size_t count);

    /// Closes the connections that the answers left open.
    void release();

    [[nodiscard]] std::vector<ChannelRequest> requests();

private:
    std::vector<std::string> command(const std::string& line);

    ChildProcess server_;
};

}  // namespace vorthmere::end_to_end
