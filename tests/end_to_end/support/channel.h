#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/end_to_end/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::end_to_end {

/// The port of the test channel, which is the release channel of this build, on this machine.
[[nodiscard]] unsigned channelPort();

/// "host:port" of the channel's address.
[[nodiscard]] std::string channelAuthority();

/// The path in the address of a file of the channel, and the whole address.
[[nodiscard]] std::string channelPath(const std::string& name);
[[nodiscard]] std::string channelUrl(const std::string& name);

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

/// The folder of the certificates of this run of the tests. The first test that calls this makes them. Every call lets
/// the tests' Wine prefix trust the good authority.
///
/// @throws std::runtime_error when that is not possible
[[nodiscard]] std::filesystem::path channelCertificates();

/// nginx, which serves a folder for as long as the object lives.
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

/// A server that gives the answers that a test asks for. tests/end_to_end/support/fault_server.py describes its
/// commands and answers. The destructor fails the test for a request that was not expected, or an expected one that
/// never came.
class FaultServer {
public:
    FaultServer();
    FaultServer(const FaultServer&) = delete;
    FaultServer& operator=(const FaultServer&) = delete;
    ~FaultServer();

    /// Expects one more request for a path and sets its answer. Several answers for a path are given in order.
    void answer(const std::string& path, const std::string& how);

    void useCertificate(const std::string& name);
    void setHandshake(const std::string& mode);

    /// Waits until `count` requests for a path have arrived since the start, and fails the test when they do not.
    void waitForRequests(const std::string& path, std::size_t count);

    /// Closes the connections that the answers left open.
    void release();

    [[nodiscard]] std::vector<ChannelRequest> requests();

private:
    std::vector<std::string> command(const std::string& line);

    ChildProcess server_;
};

}  // namespace vorthmere::end_to_end
