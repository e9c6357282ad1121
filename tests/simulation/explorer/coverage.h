#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/simulation/explorer/known_losses.h"
#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// Counts what the scenarios exercised.
class Coverage {
public:
    void count(const Outcome& outcome);
    void countLoss(const KnownLoss& loss) {
        ++losses_[std::string(loss.name)];
    }

    /// Operations that no run made, and faults of faultsOf() that no run met.
    [[nodiscard]] std::vector<std::string> missing() const;

    [[nodiscard]] std::string summary() const;

    [[nodiscard]] std::size_t faultsMet() const;

private:
    std::map<Operation, std::size_t> operations_;
    std::map<std::pair<Operation, std::string>, std::size_t> faults_;
    std::map<std::string, std::size_t> losses_;
};

}  // namespace vorthmere::update::simulation
