#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/disk.h"
#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

/// What the channel answers to one address.
struct Answer {
    std::uint32_t status = 200;
    Content body = contentOf("");
    bool tellsLength = true;
    std::optional<std::uint64_t> toldLength = {};      ///< instead of the body's own
    std::size_t chunkBytes = 8192;                     ///< most that can be read at once
    std::optional<std::uint64_t> breaksOffAfter = {};  ///< bytes of the body; then bodyError
    Error sendError = error::none;                     ///< of sending the request, for instance 12029
    Error answerError = error::none;                   ///< of waiting for the answer, for instance 12002
    Error bodyError = error::connectionBroken;
    std::uint64_t waitMs = 0;         ///< until the answer comes; a wait beyond the receive time-out ends with 12002
    std::string location = {};        ///< of a redirect: an address like those of Internet::answers
    std::string repeatedHeader = {};  ///< when named, the body is what the request says in this header
};

/// A request that was sent, for tests to look at.
struct SentRequest {
    std::string address;
    std::vector<std::string> headers;
    bool followsRedirects = true;
};

/// The HTTPS client of the system, and the channel at its other end.
class Internet {
public:
    /// "https://host/path", or with ":port" when it is not 443. Any other address answers 404.
    std::map<std::string, Answer, std::less<>> answers;
    Error channelError = error::none;  ///< of sending to any address
    std::vector<SentRequest> sent;
    Error lastError = error::none;

    struct Address {
        bool isHttps = false;
        std::string host;
        std::uint16_t port = 0;
        std::string path;
        std::string extraInfo;
    };
    static bool crack(std::string_view address, Address& parts);

    HandleId openSession();
    /// For the connections to come.
    void setReceiveTimeout(HandleId session, std::uint64_t receiveMs);
    HandleId connectTo(HandleId session, std::string_view host, std::uint16_t port);
    HandleId createSecureGet(HandleId connection, std::string_view objectName);
    void disableRedirects(HandleId request);
    void setHeader(HandleId request, std::string_view line);
    bool send(HandleId request);
    bool receive(HandleId request, std::uint64_t& nowMs);
    bool status(HandleId request, std::uint32_t& status);
    bool contentLength(HandleId request, std::uint32_t& length);
    bool available(HandleId request, std::uint32_t& bytes);
    bool read(HandleId request, char* buffer, std::uint32_t size, std::uint32_t& count);
    bool close(HandleId handle);

    /// The address of a request, or what a session or connection leads to.
    [[nodiscard]] std::string nameOf(HandleId handle) const;
    [[nodiscard]] std::vector<std::string> openHandles() const;
    void closeAllHandles();

private:
    static constexpr std::uint16_t kHttpsPort = 443;
    static constexpr std::uint64_t kDefaultReceiveMs = 30000;
    enum class Kind { session, connection, request };
    struct Handle {
        HandleId id = 0;
        Kind kind = Kind::session;
        std::string address;
        std::uint64_t receiveMs = kDefaultReceiveMs;
        SentRequest request;
        bool isSent = false;
        bool isAnswered = false;
        Answer answer;
        std::uint64_t position = 0;
        int redirects = 0;
    };
    Handle* find(HandleId id, Kind kind);
    Handle* answered(HandleId request);
    HandleId add(Handle handle);
    [[nodiscard]] Answer answerTo(const SentRequest& request) const;
    bool ask(Handle& request);
    bool fail(Error error);

    std::vector<Handle> handles_;
    HandleId nextHandle_ = 0x400000;
};

}  // namespace vorthmere::update::simulation
