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
    std::size_t everyNth = 1;       ///< of the scenarios that can be visited one by one, when no time is given
    std::size_t draws = 0;          ///< of each exploration that is drawn, when no time is given
    std::size_t share = 0;          ///< which part of the work is done here, of `shares`
    std::size_t shares = 1;
    std::vector<std::size_t> only;  ///< numbers of explorations; empty: all
    std::size_t mostFindings = 5;   ///< kinds of findings after which it ends
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

    /// True when known losses excused more scenarios than they should. Few scenarios, or some explorations alone, say
    /// nothing about that.
    [[nodiscard]] bool excusesTooMuch() const;

    void printSummary(double seconds) const;

private:
    /// The scenarios of one exploration, one after the other.
    struct Visit {
        std::size_t exploration = 0;
        std::optional<Choices> next;  ///< of those that can be visited one by one
        std::size_t index = 0;
        std::size_t round = 0;  ///< how often all of them were counted
        std::size_t scenarios = 0;
    };

    bool step(Visit& visit, const Amount& amount);
    bool draw(Visit& visit, const Amount& amount);
    bool count(Visit& visit, const Amount& amount);
    bool isNew(const Exploration& exploration, Tape tape);
    void visit(Visit& visit, Tape& tape);
    void report(const Finding& finding, std::size_t exploration, const Choices& choices);
    std::optional<Finding> run(const Choices& choices);

    Examination examination_;
    Stock stock_;
    std::map<std::string, std::size_t> findings_;
    std::vector<Visit> visits_;
    std::size_t scenarios_ = 0;
    std::size_t mostFindings_ = 5;
};

}  // namespace vorthmere::update::simulation
