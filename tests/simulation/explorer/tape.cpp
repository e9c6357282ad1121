#include "tests/simulation/explorer/tape.h"

#include <algorithm>
#include <charconv>

namespace vorthmere::update::simulation {

std::string recordOf(const Choices& choices) {
    std::string text;
    for (const std::uint32_t choice : choices)
        text += (text.empty() ? "" : ".") + std::to_string(choice);
    return text;
}

std::optional<Choices> choicesOf(std::string_view text) {
    Choices choices;
    while (!text.empty()) {
        std::uint32_t choice = 0;
        const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), choice);
        if (fault != std::errc()) return std::nullopt;
        choices.push_back(choice);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (text.empty()) break;
        if (text.front() != '.' || text.size() == 1) return std::nullopt;
        text.remove_prefix(1);
    }
    return choices;
}

std::size_t Tape::upTo(std::size_t most) {
    const std::size_t position = taken_.size();
    std::uint64_t choice = 0;
    if (position < given_.size())
        choice = std::min<std::uint64_t>(given_[position], most);
    else if (draws_)
        choice = numbers_.next() % (std::uint64_t{most} + 1);
    taken_.push_back(static_cast<std::uint32_t>(choice));
    limits_.push_back(static_cast<std::uint32_t>(most));
    return static_cast<std::size_t>(choice);
}

std::optional<Choices> Tape::next(std::size_t fixed) const {
    for (std::size_t i = taken_.size(); i > fixed; --i) {
        if (taken_[i - 1] == limits_[i - 1]) continue;
        Choices choices(taken_.begin(), taken_.begin() + static_cast<std::ptrdiff_t>(i));
        ++choices.back();
        return choices;
    }
    return std::nullopt;
}

namespace {

class Shrinker {
public:
    Shrinker(Choices choices, std::size_t fixed, std::size_t tries, const std::function<bool(const Choices&)>& fails)
        : choices_(std::move(choices)), fixed_(std::min(fixed, choices_.size())), tries_(tries), fails_(fails) {}

    Choices run() {
        while (shorten() || lower()) {
        }
        return choices_;
    }

private:
    bool accept(const Choices& candidate) {
        if (tries_ == 0 || candidate == choices_) return false;
        --tries_;
        if (!fails_(candidate)) return false;
        choices_ = candidate;
        return true;
    }

    // Blocks from the end first: what comes late mostly depends on what comes early.
    bool shorten() {
        bool shorter = false;
        for (std::size_t block = (choices_.size() - fixed_ + 1) / 2; block > 0; block /= 2) {
            for (std::size_t end = choices_.size(); end >= fixed_ + block; end -= block) {
                if (end > choices_.size()) continue;
                Choices candidate = choices_;
                const auto last = candidate.begin() + static_cast<std::ptrdiff_t>(end);
                candidate.erase(last - static_cast<std::ptrdiff_t>(block), last);
                shorter |= accept(candidate);
            }
        }
        return shorter;
    }

    bool lower() {
        bool lower = false;
        for (std::size_t i = fixed_; i < choices_.size(); ++i)
            for (const std::uint32_t value : {0U, choices_[i] / 2, choices_[i] - 1}) {
                if (i >= choices_.size() || value >= choices_[i]) continue;
                Choices candidate = choices_;
                candidate[i] = value;
                if (accept(candidate)) {
                    lower = true;
                    break;
                }
            }
        return lower;
    }

    Choices choices_;
    std::size_t fixed_;
    std::size_t tries_;
    const std::function<bool(const Choices&)>& fails_;
};

}  // namespace

Choices shrunk(Choices choices, std::size_t fixed, std::size_t tries,
               const std::function<bool(const Choices&)>& fails) {
    return Shrinker(std::move(choices), fixed, tries, fails).run();
}

}  // namespace vorthmere::update::simulation
