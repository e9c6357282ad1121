#include "tests/contract/differential/steps.h"

#include <array>
#include <utility>

#include "tests/support/split_mix.h"

namespace vorthmere::update::contract {
namespace {

struct Kind {
    std::string_view name;
    std::size_t weight;
};

/// In the order of Action.
constexpr std::array<Kind, kActions> kKinds{{
    {"createFolder", 14}, {"removeEmptyFolder", 8},
    {"deleteFile", 8},    {"setAttributes", 5},
    {"moveFile", 16},     {"copyFile", 8},
    {"copyToNew", 4},     {"write", 20},
    {"read", 6},          {"entryAttributes", 4},
    {"entryFacts", 4},    {"targetFacts", 3},
    {"listFolder", 6},    {"finalPath", 3},
    {"hold", 14},         {"lock", 2},
    {"map", 3},           {"enter", 3},
    {"letGo", 5},
}};

constexpr std::array<std::string_view, 12> kPaths = {"a",   "b",     "c",     "d",   "d/a", "d/b",
                                                     "d/e", "d/e/a", "d/e/f", "e/a", "e",   "name with blanks.txt"};
constexpr std::array<std::string_view, 6> kOddPaths = {"a*", "d/a. .", "b.", "e?/a", "d/./../a", "a/b/c"};

/// The first steps of most sequences, so that the others have something to work on.
constexpr std::array<std::pair<Action, std::string_view>, 4> kBeginning{{
    {Action::write, "a"},
    {Action::createFolder, "d"},
    {Action::write, "d/a"},
    {Action::write, "d/b"},
}};

constexpr std::size_t kMostSteps = 40;
constexpr std::size_t kOddsOfOtherCase = 12;
constexpr std::size_t kOddsOfOddPath = 30;
constexpr std::size_t kOddsOfLeavingOut = 5;

class Random {
public:
    explicit Random(std::uint64_t seed) : numbers_(seed) {}

    /// @return a number below `count`
    std::size_t below(std::size_t count) {
        return static_cast<std::size_t>(numbers_.next() % count);
    }

private:
    testing::SplitMix numbers_;
};

/// Draws a path, often the sequence's favourite, so that steps affect each other. Sometimes changes a letter's case.
std::string drawPath(Random& random, std::string_view favourite) {
    std::string path(favourite);
    if (random.below(kOddsOfOddPath) == 0)
        path = kOddPaths[random.below(kOddPaths.size())];
    else if (random.below(3) != 0)
        path = kPaths[random.below(kPaths.size())];
    for (char& c : path)
        if (c >= 'a' && c <= 'z' && random.below(kOddsOfOtherCase) == 0) c = static_cast<char>(c - 'a' + 'A');
    return path;
}

struct Habits {
    std::array<std::size_t, kActions> weights{};
    std::size_t sum = 0;
    std::string_view favourite;
};

Step drawStep(Random& random, const Habits& habits) {
    std::size_t at = random.below(habits.sum);
    std::size_t kind = 0;
    while (at >= habits.weights[kind])
        at -= habits.weights[kind++];
    Step step;
    step.action = static_cast<Action>(kind);
    step.path = drawPath(random, habits.favourite);
    step.second = drawPath(random, habits.favourite);
    step.access = static_cast<unsigned>(random.below(8));
    // Half of the holders share everything; otherwise most steps after them would be refused.
    step.sharing = static_cast<unsigned>(random.below(2) == 0 ? 7 : random.below(8));
    // Read-only, hidden or plain.
    step.attributes = std::array<std::uint32_t, 4>{1, 1, 2, 0}[random.below(4)];
    return step;
}

}  // namespace

std::vector<Step> drawSteps(std::uint64_t seed) {
    Random random(seed);
    Habits habits;
    habits.favourite = kPaths[random.below(kPaths.size())];
    for (std::size_t i = 0; i < kActions; ++i) {
        const bool isLeftOut = random.below(kOddsOfLeavingOut) == 0 && static_cast<Action>(i) != Action::write;
        habits.weights[i] = isLeftOut ? 0 : kKinds[i].weight;
        habits.sum += habits.weights[i];
    }
    std::vector<Step> steps;
    if (random.below(3) != 0)
        for (const auto& [action, path] : kBeginning) {
            steps.emplace_back().action = action;
            steps.back().path = path;
        }
    const std::size_t count = 1 + random.below(kMostSteps);
    for (std::size_t i = 0; i < count; ++i)
        steps.push_back(drawStep(random, habits));
    return steps;
}

std::string describe(const Step& step) {
    std::string text(kKinds[static_cast<std::size_t>(step.action)].name);
    if (step.action == Action::letGo) return text;
    text += " " + step.path;
    const bool hasTarget =
        step.action == Action::moveFile || step.action == Action::copyFile || step.action == Action::copyToNew;
    if (hasTarget) text += " -> " + step.second;
    if (step.action == Action::setAttributes) text += " " + std::to_string(step.attributes);
    if (step.action == Action::hold)
        text += " access " + std::to_string(step.access) + " sharing " + std::to_string(step.sharing);
    return text;
}

std::string describe(const Answer& answer) {
    return answer.error == 0 ? "success " + answer.facts : std::to_string(answer.error);
}

}  // namespace vorthmere::update::contract
