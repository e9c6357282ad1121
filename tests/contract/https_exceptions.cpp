#include "tests/contract/exceptions.h"

namespace vorthmere::update::contract {
namespace {

constexpr std::string_view kEveryHandshake = "Wine has one number for every handshake that fails";
constexpr std::string_view kSocketNumber = "Wine tells the number of the sockets";
constexpr std::string_view kEmptyAnswer = "Wine treats an answer that is not there as an empty one";

constexpr WineException kExceptions[] = {
    {"a length of more than 32 bits is not told", 0, "", "Wine tells the largest number that it can"},
    {"a lost connection is no end of a body", 0, "012345", "Wine takes every end of the connection for the body's"},
    {"a certificate for another name is refused", 12157, "", kEveryHandshake},
    {"a certificate of an unknown authority is refused", 12157, "", kEveryHandshake},
    {"the wait for an answer has an end", 12152, "", "Wine waits until the server ends it"},
    {"the wait for the rest of a body has an end", 10060, "012345", kSocketNumber},
    {"a reading has an end", 10060, "", kSocketNumber},
    {"an unsent request has no bytes", 0, "", kEmptyAnswer},
    {"an unsent request is not read", 0, "", kEmptyAnswer},
};

}  // namespace

std::span<const WineException> wineExceptions() {
    return kExceptions;
}

}  // namespace vorthmere::update::contract
