#include "tests/contract/https_server.h"
#include "tests/simulation/passage.h"

namespace vorthmere::update::contract {
namespace {

using simulation::Answer;
using simulation::Error;

constexpr std::size_t kChunkBytes = 4;
constexpr std::uint64_t kLongerThanAnyTimeoutMs = 1'000'000;

Error sendErrorOf(Host host) {
    switch (host) {
        case Host::trusted:
            return simulation::error::none;
        case Host::wrongName:
        case Host::unknownAuthority:
            return simulation::error::secureFailure;
        case Host::absent:
            break;
    }
    return simulation::error::cannotConnect;
}

Answer simulated(const ServedAnswer& served) {
    Answer answer;
    const std::string body = served.body();
    answer.status = served.status;
    answer.location = simulation::narrowOf(served.location);
    answer.repeatedHeader = served.repeatedHeader;
    answer.sendError = sendErrorOf(served.host);
    if (served.isMute) answer.waitMs = kLongerThanAnyTimeoutMs;
    answer.tellsLength = !served.isChunked;
    if (served.isChunked) answer.chunkBytes = kChunkBytes;
    answer.toldLength = served.statedLength.value_or(body.size());
    answer.body = simulation::contentOf(body.substr(0, served.sentBytes.value_or(body.size())));
    if (served.ending == Ending::inOrder) return answer;
    answer.breaksOffAfter = answer.body->size();
    answer.bodyError =
        served.ending == Ending::lost ? simulation::error::connectionBroken : simulation::error::timedOut;
    return answer;
}

}  // namespace

std::wstring addressOf(const ServedAnswer& answer) {
    auto& answers = simulation::currentGate().machine().internet.answers;
    const std::string address = "https://host:8443/" + std::to_string(answers.size());
    answers[address] = simulated(answer);
    return simulation::wideOf(address);
}

}  // namespace vorthmere::update::contract
