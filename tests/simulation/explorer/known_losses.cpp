#include "tests/simulation/explorer/known_losses.h"

#include <algorithm>

namespace vorthmere::update::simulation {

const std::vector<KnownLoss>& knownLosses() {
    static const std::vector<KnownLoss> losses = {};
    return losses;
}

const KnownLoss* knownLossOf(const Outcome& outcome, const Breach& breach) {
    const std::vector<KnownLoss>& losses = knownLosses();
    const auto found = std::find_if(losses.begin(), losses.end(),
                                    [&](const KnownLoss& loss) { return loss.explains(outcome, breach); });
    return found == losses.end() ? nullptr : &*found;
}

}  // namespace vorthmere::update::simulation
