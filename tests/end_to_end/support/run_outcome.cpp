#include "tests/end_to_end/support/run_outcome.h"

#include <stdexcept>
#include <string_view>

namespace vorthmere::end_to_end {
namespace {

constexpr Milliseconds kLineLimit{5'000};

std::string readValue(ChildProcess& probe, std::string_view key) {
    const std::string line = probe.readLine(kLineLimit);
    if (!line.starts_with(key)) throw std::runtime_error("the probe tells no " + std::string(key) + " but: " + line);
    return line.substr(key.size());
}

}  // namespace

RunOutcome readOutcome(ChildProcess& probe) {
    RunOutcome outcome;
    static_cast<void>(readValue(probe, "status="));
    const std::string detail = readValue(probe, "detail=");
    outcome.exitCode = static_cast<std::uint32_t>(std::stoul(readValue(probe, "exit=0x"), nullptr, 16));
    if (outcome.exitCode != 0) outcome.sentence = detail.substr(0, detail.find("\\n"));
    return outcome;
}

}  // namespace vorthmere::end_to_end
