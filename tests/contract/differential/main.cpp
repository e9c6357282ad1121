// Takes the same random steps on the simulated machine and on the real platform, and compares after each.
//
// Usage: differential_run [--seed N] [--seconds N | --sequence N]
//
// --seconds   longest time; without it, a fixed number of sequences
// --sequence  one sequence alone, by its number
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "tests/contract/differential/differences.h"
#include "tests/contract/differential/sides.h"
#include "update/ascii.h"

namespace vorthmere::update::contract {
namespace {

constexpr std::uint64_t kUsualSeed = 41;
constexpr std::size_t kUsualSequences = 400;
constexpr std::size_t kSequencesPerWorld = 50;
/// Of 1000 steps, at most this many may end their sequence with a known difference.
constexpr std::size_t kMostExcused = 25;
constexpr std::string_view kSpelling = "names keep their spelling";

struct Options {
    std::uint64_t seed = kUsualSeed;
    std::optional<unsigned> seconds;
    std::optional<std::uint64_t> sequence;
};

struct Result {
    bool agreed = true;
    std::string report;
    std::string_view excuse;  ///< name of the known difference that ended the sequence
    std::size_t steps = 0;    ///< taken
    bool differsInSpelling = false;
};

class Run {
public:
    explicit Run(Options options) : options_(options) {}

    int perform() {
        std::printf("seed %llu\n", static_cast<unsigned long long>(options_.seed));
        if (options_.sequence) return report(*options_.sequence) ? 0 : 1;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(options_.seconds.value_or(0));
        const auto goesOn = [&] {
            return options_.seconds ? std::chrono::steady_clock::now() < end : sequences_ < kUsualSequences;
        };
        while (goesOn())
            if (!report(sequences_)) return 1;
        return judge();
    }

private:
    /// Takes one sequence. @return false when the two differ without an excuse; then it prints the shortest such steps
    bool report(std::uint64_t sequence) {
        const std::vector<Step> steps = drawSteps(options_.seed * 1'000'003 + sequence);
        const Result result = take(steps);
        ++sequences_;
        steps_ += result.steps;
        if (!result.excuse.empty()) ++excused_[result.excuse];
        if (result.differsInSpelling) ++excused_[kSpelling];
        if (result.agreed) return true;
        std::printf("the two differ in sequence %llu; its shortest form:\n%s\nagain: --seed %llu --sequence %llu\n",
                    static_cast<unsigned long long>(sequence), take(shrink(steps)).report.c_str(),
                    static_cast<unsigned long long>(options_.seed), static_cast<unsigned long long>(sequence));
        return false;
    }

    /// Leaves out each step that is not needed for a difference.
    std::vector<Step> shrink(std::vector<Step> steps) {
        for (std::size_t i = steps.size(); i-- > 0;) {
            std::vector<Step> fewer = steps;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
            if (!take(fewer).agreed) steps = std::move(fewer);
        }
        return steps;
    }

    std::filesystem::path nextFolder() {
        if (folders_++ % kSequencesPerWorld == 0) {
            world_.reset();
            world_ = World::create();
        }
        return world_->folder() / std::to_string(folders_);
    }

    Result take(const std::vector<Step>& steps) {
        const std::filesystem::path folder = nextFolder();
        RealSide real(*world_, folder);
        ModelSide model(world_->deletions().front());
        Result result;
        for (const Step& step : steps) {
            const simulation::Machine before = model.machine();
            const Answer modelled = model.perform(step);
            const Answer told = real.perform(step);
            ++result.steps;
            result.report += describe(step) + ": " + describe(modelled) + "\n";
            const Comparison comparison{step, before, model.machine(), modelled, told};
            if (excuses(comparison, modelled == told, result)) return result;
            if (isSame(modelled.error, modelled.facts, told.error, told.facts, result)) continue;
            result.agreed = false;
            result.report += "    but the real one says " + describe(told) + "\n";
            return result;
        }
        compareTrees(model.tree(), real.tree(), result);
        return result;
    }

    /// @return true when a known difference ends the sequence
    bool excuses(const Comparison& comparison, bool isSame, Result& result) const {
        if (world_->isWindowsToTheLetter()) return false;
        for (const Difference& known : knownDifferences())
            if (known.showsLater == isSame && known.applies(comparison)) {
                result.excuse = known.name;
                return true;
            }
        return false;
    }

    /// Wine keeps the old spelling of a name that is moved onto another spelling. That does not end a sequence.
    bool isSame(std::uint32_t leftError, const std::string& left, std::uint32_t rightError, const std::string& right,
                Result& result) const {
        if (leftError != rightError) return false;
        if (left == right) return true;
        if (world_->isWindowsToTheLetter() || toAsciiLower(left) != toAsciiLower(right)) return false;
        result.differsInSpelling = true;
        return true;
    }

    void compareTrees(const std::string& model, const std::string& real, Result& result) const {
        if (isSame(0, model, 0, real, result)) return;
        result.agreed = false;
        result.report += "the model's tree:\n" + model + "the real one:\n" + real;
    }

    int judge() const {
        std::printf("%zu sequences, %zu steps\n", sequences_, steps_);
        std::size_t ended = 0;
        for (const auto& [name, count] : excused_) {
            std::printf("%6zu  %s\n", count, std::string(name).c_str());
            if (name != kSpelling) ended += count;
        }
        if (ended * 1000 > steps_ * kMostExcused) {
            std::printf("too many sequences end by a known difference: the run compares too little\n");
            return 1;
        }
        return allWereNeeded() ? 0 : 1;
    }

    bool allWereNeeded() const {
        bool all = true;
        for (const Difference& known : knownDifferences())
            if (!world_->isWindowsToTheLetter() && !known.isRare && !excused_.contains(known.name)) {
                std::printf("never needed: %s\n", std::string(known.name).c_str());
                all = false;
            }
        return all;
    }

    Options options_;
    std::unique_ptr<World> world_;
    std::size_t folders_ = 0;
    std::size_t sequences_ = 0;
    std::size_t steps_ = 0;
    std::map<std::string_view, std::size_t> excused_;
};

Options optionsOf(int argc, char** argv) {
    Options options;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        const std::uint64_t number = std::strtoull(argv[i + 1], nullptr, 10);
        if (name == "--seed") options.seed = number;
        if (name == "--seconds") options.seconds = static_cast<unsigned>(number);
        if (name == "--sequence") options.sequence = number;
    }
    return options;
}

}  // namespace
}  // namespace vorthmere::update::contract

int main(int argc, char** argv) {
    using namespace vorthmere::update::contract;
    return Run(optionsOf(argc, argv)).perform();
}
