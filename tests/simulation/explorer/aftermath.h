#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "tests/simulation/explorer/invariants.h"

namespace vorthmere::update::simulation {

/// Checks what follows an update when nothing disturbs it any more: invariants 8 and 9.
///
/// Many updates end in the same tree; each tree of a setting is followed up once.
class Aftermath {
public:
    explicit Aftermath(const DocumentedFailures& documented) : documented_(documented) {}

    [[nodiscard]] std::vector<Breach> brokenInvariants(const Outcome& outcome);

    /// How many updates were run for it.
    [[nodiscard]] std::size_t runs() const {
        return runs_;
    }

private:
    struct Question {
        SettingPointer setting;
        std::uint64_t tree = 0;
        std::uint32_t release = 0;
        bool mustComplete = false;
        bool needsRecovery = false;
        friend auto operator<=>(const Question&, const Question&) = default;
    };

    std::vector<Breach> answer(const Outcome& outcome, const Machine& machine, Tree tree, const Question& question);
    void nextRun(const Outcome& outcome, const Machine& machine, const Tree& tree, const Question& question,
                 std::string_view invariant, std::vector<Breach>& breaches);
    void recovery(const Outcome& outcome, Machine machine, const Question& question, std::vector<Breach>& breaches);
    int calmCode(const SettingPointer& setting);

    const DocumentedFailures& documented_;
    std::map<Question, std::vector<Breach>> answers_;
    std::map<SettingPointer, int> calmCodes_;
    std::size_t runs_ = 0;
};

/// Ends whatever another program still holds, and gives the disk room.
void makePeace(Machine& machine);

}  // namespace vorthmere::update::simulation
