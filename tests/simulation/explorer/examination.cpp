#include "tests/simulation/explorer/examination.h"

#include <algorithm>
#include <sstream>

#include "tests/simulation/explorer/expected_run.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::size_t kShownCalls = 12;

std::vector<Breach> unmet(const Outcome& outcome, std::size_t mustMeet) {
    std::vector<Breach> breaches;
    for (std::size_t i = 0; i < std::min(mustMeet, outcome.timesMet.size()); ++i)
        if (outcome.timesMet[i] == 0)
            breaches.push_back({"met", "", describe(outcome.scenario.plan[i]) + " did not happen"});
    return breaches;
}

/// Where two runs of one scenario part.
std::vector<Breach> differences(const Outcome& first, const Outcome& second) {
    const auto [left, right] =
        std::mismatch(first.calls.begin(), first.calls.end(), second.calls.begin(), second.calls.end());
    if (left != first.calls.end() || right != second.calls.end())
        return {{"deterministic", "",
                 "the second run differs from call " + std::to_string(left - first.calls.begin()) + " on"}};
    if (fingerprintOf(first.after) != fingerprintOf(second.after))
        return {{"deterministic", "", "the second run leaves another tree"}};
    return {};
}

void append(std::vector<Breach>& all, std::vector<Breach> more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

}  // namespace

Finding Examination::examine(const Scenario& scenario, std::size_t mustMeet, bool twice) {
    Finding finding{{}, play(scenario)};
    ++updates_;
    coverage_.count(finding.outcome);

    std::vector<Breach> breaches = brokenInvariants(finding.outcome, documented_);
    append(breaches, aftermath_.brokenInvariants(finding.outcome));
    bool isExcused = false;
    for (Breach& breach : breaches) {
        if (const KnownLoss* loss = knownLossOf(finding.outcome, breach)) {
            coverage_.countLoss(*loss);
            isExcused = true;
        } else {
            finding.breaches.push_back(std::move(breach));
        }
    }
    if (isExcused) ++excused_;
    append(finding.breaches, unmet(finding.outcome, mustMeet));
    append(finding.breaches, brokenExpectations(finding.outcome));
    if (!twice) return finding;
    ++updates_;
    append(finding.breaches, differences(finding.outcome, play(scenario)));
    return finding;
}

std::string describe(const Finding& finding) {
    const Outcome& outcome = finding.outcome;
    std::ostringstream text;
    for (const Breach& breach : finding.breaches)
        text << "BROKEN \"" << breach.invariant << "\": " << breach.what << "\n";
    text << "after " << describe(outcome.scenario) << "it ended with " << describe(outcome) << "\n";
    text << "the last of " << outcome.calls.size() << " calls:\n";
    const std::size_t shown = std::min(kShownCalls, outcome.calls.size());
    for (std::size_t i = outcome.calls.size() - shown; i < outcome.calls.size(); ++i)
        text << "  " << describe(outcome.calls[i]) << "\n";
    text << "what is different from before:\n" << difference(outcome.scenario.setting->before, outcome.after);
    return text.str();
}

}  // namespace vorthmere::update::simulation
