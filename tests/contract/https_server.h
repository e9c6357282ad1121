#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vorthmere::update::contract {

/// Who is asked. All of them have the same port of this computer.
enum class Host {
    trusted,           ///< a server with a certificate of a trusted authority for its own name
    wrongName,         ///< the same certificate, under another name
    unknownAuthority,  ///< a certificate for its own name, of an authority that nobody trusts
    absent,            ///< nobody listens
};

/// What becomes of the connection after the last byte that is sent.
enum class Ending {
    inOrder,  ///< the server closes it as TLS demands
    lost,     ///< it is closed without the notice of TLS
    silent,   ///< it stays open for longer than any receive time-out of the tests
};

/// An answer of the test's HTTPS server.
struct ServedAnswer {
    Host host = Host::trusted;
    bool isMute = false;  ///< nothing is ever answered
    std::uint32_t status = 200;
    std::wstring location = {};                      ///< of a redirect
    std::string text = {};                           ///< makes the body ...
    std::size_t times = 1;                           ///< ... when it is repeated so often
    std::string repeatedHeader = {};                 ///< when named, the body is what the request says in this header
    bool isChunked = false;                          ///< without a stated length, in chunks of 4 bytes
    std::optional<std::uint64_t> statedLength = {};  ///< instead of the body's own
    std::optional<std::size_t> sentBytes = {};       ///< of the body; the rest is never sent
    Ending ending = Ending::inOrder;

    [[nodiscard]] std::string body() const {
        std::string whole;
        for (std::size_t time = 0; time < times; ++time)
            whole += text;
        return whole;
    }
};

/// The address at which the server gives this answer. Needs a World.
[[nodiscard]] std::wstring addressOf(const ServedAnswer& answer);

}  // namespace vorthmere::update::contract
