// The server is tests/contract/with_https_server.py. The address of a request describes the answer.
#include <string_view>

#include "tests/contract/https_server.h"
#include "update/release_channel.h"

namespace vorthmere::update::contract {
namespace {

std::string_view hostName(Host host) {
    switch (host) {
        case Host::trusted:
            return "127.0.0.1";
        case Host::wrongName:
            return "127.0.0.2";
        case Host::unknownAuthority:
            return "127.0.0.3";
        case Host::absent:
            break;
    }
    return "127.0.0.4";
}

std::string_view endWord(Ending ending) {
    switch (ending) {
        case Ending::inOrder:
            return "close";
        case Ending::lost:
            return "drop";
        case Ending::silent:
            break;
    }
    return "stall";
}

/// ":port" of the release channel of this build.
std::string_view portText() {
    std::string_view text = kDownloadBaseUrl;
    text.remove_prefix(text.rfind(':'));
    return text.substr(0, text.find('/'));
}

/// Each byte as "%" and its two digits.
std::string encoded(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string all;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        all += {'%', digits[byte / 16U], digits[byte % 16U]};
    }
    return all;
}

}  // namespace

std::wstring addressOf(const ServedAnswer& answer) {
    std::string address = "https://" + std::string(hostName(answer.host)) + std::string(portText()) + "/?";
    const auto add = [&address](const std::string& key, std::string_view value) {
        address += key + "=" + encoded(value) + "&";
    };
    add("status", std::to_string(answer.status));
    add("end", endWord(answer.ending));
    add("text", answer.text);
    add("times", std::to_string(answer.times));
    if (answer.isMute) add("head", "stall");
    if (!answer.location.empty()) add("location", std::string(answer.location.begin(), answer.location.end()));
    if (!answer.repeatedHeader.empty()) add("repeat", answer.repeatedHeader);
    if (answer.isChunked) address += "chunked=yes&piece=4&";
    if (answer.statedLength) add("length", std::to_string(*answer.statedLength));
    if (answer.sentBytes) add("send", std::to_string(*answer.sentBytes));
    return {address.begin(), address.end()};
}

}  // namespace vorthmere::update::contract
