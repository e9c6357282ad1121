#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/simulation/explorer/examination.h"
#include "tests/simulation/explorer/explorations.h"
#include "tests/simulation/explorer/tape.h"

namespace vorthmere::update::simulation {

/// What to explore.
struct Amount {
    std::uint64_t seed = 1;
    std::optional<double> seconds;  ///< everything, until the time is over
    std::size_t everyNth = 1;       ///< of the scenarios that can be visited one by one
    std::size_t draws = 0;          ///< of each exploration that is drawn
    std::vector<std::size_t> only;  ///< numbers of explorations; empty: all
    std::size_t mostFindings = 5;
};

/// Visits scenarios, counts them and tells what they showed.
class Explorer {
public:
    explicit Explorer(const DocumentedFailures& documented) : examination_(documented) {}

    void explore(const Amount& amount);

    /// Plays one record and tells all about it.
    void replay(const Choices& choices);

    [[nodiscard]] std::size_t findings() const {
        return findings_.size();
    }
    [[nodiscard]] const Examination& examination() const {
        return examination_;
    }

    void printSummary(double seconds) const;

private:
    /// The scenarios of one exploration, one after the other.
    struct Visit {
        std::size_t exploration = 0;
        std::optional<Choices> next;  ///< of those that can be visited one by one
        std::size_t index = 0;
        std::size_t scenarios = 0;
    };

    bool step(Visit& visit, const Amount& amount);
    void visit(Visit& visit, Tape& tape);
    void report(const Finding& finding, std::size_t mustMeet, const Choices& choices);
    std::optional<Finding> run(const Choices& choices);

    Examination examination_;
    Stock stock_;
    std::map<std::string, std::size_t> findings_;
    std::vector<Visit> visits_;
    std::size_t scenarios_ = 0;
    std::size_t mostFindings_ = 5;
};

}  // namespace vorthmere::update::simulation
