#include <algorithm>
#include <charconv>

#include "tests/simulation/internet.h"
#include "tests/simulation/names.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::uint16_t kHttpPort = 80;

/// @return false when the text is no port
bool takePort(std::string_view text, std::uint16_t& port) {
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), port);
    return failure == std::errc{} && end == text.data() + text.size();
}

}  // namespace

bool Internet::crack(std::string_view address, Address& parts) {
    parts = Address();
    const std::size_t colon = address.find("://");
    if (colon == std::string_view::npos) return false;
    const std::string scheme = keyOf(address.substr(0, colon));
    if (scheme != "HTTPS" && scheme != "HTTP") return false;
    parts.isHttps = scheme == "HTTPS";
    parts.port = parts.isHttps ? kHttpsPort : kHttpPort;
    std::string_view rest = address.substr(colon + 3);
    const std::size_t hostEnd = std::min(rest.find_first_of("/?#"), rest.size());
    std::string_view host = rest.substr(0, hostEnd);
    rest.remove_prefix(hostEnd);
    // An address may name a user before its host.
    if (const std::size_t user = host.rfind('@'); user != std::string_view::npos) host.remove_prefix(user + 1);
    if (const std::size_t port = host.find(':'); port != std::string_view::npos) {
        if (!takePort(host.substr(port + 1), parts.port)) return false;
        host = host.substr(0, port);
    }
    parts.host = host;
    const std::size_t pathEnd = std::min(rest.find_first_of("?#"), rest.size());
    parts.path = rest.substr(0, pathEnd);
    parts.extraInfo = rest.substr(pathEnd);
    return true;
}

}  // namespace vorthmere::update::simulation
