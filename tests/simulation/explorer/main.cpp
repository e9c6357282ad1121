#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/simulation/explorer/explorer.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::string_view kUsage = R"(Plays updates on a simulated Windows in which everything goes wrong.

simulate [--seed S] [--every N] [--draws N] [--seconds N [--share J/N]] [--only E]... [--findings N] [--coverage]
simulate --tape 2.0.143.1
simulate --list

  --seed S      a number or any text; without it KVN_SIMULATION_SEED, or one is drawn
  --every N     visits each N-th of the scenarios that can be counted (1)
  --draws N     draws so many scenarios of the other explorations (0)
  --seconds N   goes on for so long instead
  --share J/N   does the J-th (from 0) of N parts of what is done in that time
  --only E      one exploration, by its number; may be repeated
  --findings N  ends after so many kinds of findings (5)
  --coverage    an operation or a fault that was never met is a failure
  --tape T      plays one scenario and prints all its calls
  --list        names the explorations and the known losses
)";

/// A text, such as a commit's hash, is as good a seed as a number.
std::uint64_t seedOf(const std::string& text) {
    std::uint64_t seed = 0;
    for (const char c : text)
        seed = seed * 131 + static_cast<unsigned char>(c);
    return text.find_first_not_of("0123456789") == std::string::npos && text.size() < 20 ? std::stoull(text) : seed;
}

struct Request {
    Amount amount;
    std::string seed;
    std::optional<Choices> tape;
    bool lists = false;
    bool wantsCoverage = false;
};

void readShare(const std::string& text, Amount& amount) {
    amount.share = std::stoul(text);
    amount.shares = std::stoul(text.substr(text.find('/') + 1));
    if (amount.share >= amount.shares) throw std::invalid_argument("No such share: " + text);
}

bool read(int count, char** words, Request& request) {
    for (int i = 1; i < count; ++i) {
        const std::string_view option = words[i];
        if (option == "--list" || option == "--coverage") {
            (option == "--list" ? request.lists : request.wantsCoverage) = true;
            continue;
        }
        if (++i == count) return false;
        const std::string value = words[i];
        if (option == "--seed")
            request.seed = value;
        else if (option == "--every")
            request.amount.everyNth = std::stoul(value);
        else if (option == "--draws")
            request.amount.draws = std::stoul(value);
        else if (option == "--seconds")
            request.amount.seconds = std::stod(value);
        else if (option == "--share")
            readShare(value, request.amount);
        else if (option == "--only")
            request.amount.only.push_back(std::stoul(value));
        else if (option == "--findings")
            request.amount.mostFindings = std::stoul(value);
        else if (option == "--tape")
            request.tape = choicesOf(value);
        else
            return false;
        if (option == "--tape" && !request.tape) return false;
    }
    return true;
}

void list() {
    for (std::size_t i = 0; i < explorations().size(); ++i)
        std::cout << i << "  " << explorations()[i].name << (explorations()[i].isExhaustible ? "" : " (drawn)") << "\n";
    for (const KnownLoss& loss : knownLosses())
        std::cout << "\n" << loss.name << " (" << loss.document << ")\n  " << loss.why << "\n";
}

/// A known loss that no longer happens must leave the list.
std::size_t lossesThatNoLongerHappen() {
    std::size_t gone = 0;
    for (const KnownLoss& loss : knownLosses()) {
        if (loss.happens()) continue;
        ++gone;
        std::cout << "NO LONGER HAPPENS: " << loss.name << "\n";
    }
    return gone;
}

int simulate(Request request) {
    const DocumentedFailures documented = DocumentedFailures::read(KVN_FAILURES_DOCUMENT);
    Explorer explorer(documented);
    if (request.tape) {
        explorer.replay(*request.tape);
        return explorer.findings() == 0 ? 0 : 1;
    }
    const char* given = std::getenv("KVN_SIMULATION_SEED");
    if (request.seed.empty() && given != nullptr) request.seed = given;
    if (request.seed.empty()) request.seed = std::to_string(std::random_device{}());
    request.amount.seed = seedOf(request.seed);
    std::cout << "seed " << request.seed << std::endl;

    const auto begin = std::chrono::steady_clock::now();
    std::size_t mistakes = lossesThatNoLongerHappen();
    explorer.explore(request.amount);
    mistakes += explorer.findings();
    explorer.printSummary(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    if (explorer.excusesTooMuch()) {
        ++mistakes;
        std::cout << "TOO MUCH IS EXCUSED by known losses.\n";
    }
    if (request.wantsCoverage)
        for (const std::string& missing : explorer.examination().coverage().missing()) {
            ++mistakes;
            std::cout << "NEVER EXERCISED: " << missing << "\n";
        }
    return mistakes == 0 ? 0 : 1;
}

}  // namespace
}  // namespace vorthmere::update::simulation

int main(int count, char** words) {
    using namespace vorthmere::update::simulation;
    try {
        Request request;
        if (!read(count, words, request)) {
            std::cerr << kUsage;
            return 2;
        }
        if (request.lists) {
            list();
            return 0;
        }
        return simulate(std::move(request));
    } catch (const std::exception& fault) {
        std::cerr << fault.what() << "\n";
        return 2;
    }
}
