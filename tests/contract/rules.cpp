#include "tests/contract/rules.h"

#include <algorithm>
#include <set>

#include "tests/contract/exceptions.h"

namespace vorthmere::update::contract {
namespace {

std::set<std::string, std::less<>> rulesMet;

const WineException* exceptionOf(std::string_view rule) {
    const auto all = wineExceptions();
    const auto at = std::find_if(all.begin(), all.end(), [rule](const auto& known) { return known.rule == rule; });
    return at == all.end() ? nullptr : &*at;
}

/// Checks after a whole run that each exception names the rule of a test.
class ExceptionsAreNeeded : public ::testing::Environment {
    void TearDown() override {
        if (GTEST_FLAG_GET(filter) != "*" || World::create()->isWindowsToTheLetter()) return;
        for (const WineException& known : wineExceptions())
            EXPECT_TRUE(rulesMet.contains(known.rule)) << "no test has the rule \"" << known.rule << '"';
    }
};

const ::testing::Environment* const exceptionsAreNeeded =
    ::testing::AddGlobalTestEnvironment(std::make_unique<ExceptionsAreNeeded>().release());

std::string describe(const Outcome& outcome) {
    const std::string told = outcome.number == 0 ? "success" : "error " + std::to_string(outcome.number);
    return outcome.tree.empty() ? told : told + " and left " + outcome.tree;
}

}  // namespace

::testing::AssertionResult follows(const World& world, std::string_view rule, const Outcome& outcome,
                                   const Outcome& demanded) {
    rulesMet.emplace(rule);
    const WineException* exception = world.isWindowsToTheLetter() ? nullptr : exceptionOf(rule);
    const Outcome excused = exception ? Outcome{exception->wineGives, std::string(exception->wineLeaves)} : demanded;
    if (outcome == excused) return ::testing::AssertionSuccess();
    if (exception && exception->isNeededByRootAlone && outcome == demanded) return ::testing::AssertionSuccess();
    ::testing::AssertionResult result = ::testing::AssertionFailure();
    result << '"' << rule << "\" gave " << describe(outcome) << "; Windows gives " << describe(demanded);
    if (exception && outcome == demanded) result << ": the exception for Wine is not needed";
    return result;
}

::testing::AssertionResult follows(const World& world, std::string_view rule, const std::error_code& failure,
                                   std::uint32_t demanded) {
    return follows(world, rule, Outcome{static_cast<std::uint32_t>(failure.value())}, Outcome{demanded});
}

}  // namespace vorthmere::update::contract
