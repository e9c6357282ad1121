#include "tests/simulation/explorer/tape.h"

#include <gmock/gmock.h>

#include <set>

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

TEST(Tape, VisitsEveryCombinationOnce) {
    std::set<Choices> visited;
    std::size_t visits = 0;
    std::optional<Choices> next = Choices{};
    while (next) {
        Tape tape(*next);
        const std::size_t length = tape.upTo(2);
        for (std::size_t i = 0; i < length; ++i)
            static_cast<void>(tape.coin());
        visited.insert(tape.taken());
        ++visits;
        next = tape.next();
    }
    EXPECT_EQ(visits, 1U + 2U + 4U);
    EXPECT_EQ(visited.size(), visits);
}

TEST(Tape, KeepsTheFixedNumbersWhenItCounts) {
    Tape tape({1, 5});
    static_cast<void>(tape.upTo(3));
    static_cast<void>(tape.upTo(5));
    EXPECT_EQ(tape.next(1), std::nullopt);
    EXPECT_EQ(tape.next(0), Choices{2});
}

TEST(Tape, DrawsTheSameNumbersFromTheSameSeed) {
    Tape first({}, 7);
    Tape second({}, 7);
    Tape other({}, 8);
    std::size_t different = 0;
    for (int i = 0; i < 100; ++i) {
        const std::size_t number = first.upTo(99);
        EXPECT_EQ(number, second.upTo(99));
        if (number != other.upTo(99)) ++different;
    }
    EXPECT_GT(different, 50U);
}

TEST(Tape, ReplaysWhatItTook) {
    Tape drawn({}, 7);
    for (const std::size_t most : {3U, 100U, 1U, 7U})
        static_cast<void>(drawn.upTo(most));
    const std::optional<Choices> record = choicesOf(recordOf(drawn.taken()));
    ASSERT_TRUE(record);
    Tape replayed(*record);
    for (const std::size_t most : {3U, 100U, 1U, 7U})
        static_cast<void>(replayed.upTo(most));
    EXPECT_EQ(replayed.taken(), drawn.taken());
}

TEST(Tape, GivesTheLimitForANumberAboveIt) {
    EXPECT_EQ(Tape({9}).upTo(3), 3U);
}

TEST(Tape, RefusesATextThatIsNoRecord) {
    for (const char* text : {"1..2", "a", "1.", ".1", "1,2", "-1", "99999999999"})
        EXPECT_EQ(choicesOf(text), std::nullopt) << text;
    EXPECT_EQ(choicesOf("2.0.143"), (Choices{2, 0, 143}));
}

TEST(Shrinking, FindsTheShortestAndLowestRecordThatStillFails) {
    const auto fails = [](const Choices& choices) {
        return choices.size() >= 2 && choices[0] == 4 && choices.back() >= 17;
    };
    EXPECT_THAT(shrunk({4, 9, 9, 9, 200, 3, 90}, 1, 1000, fails), ElementsAre(4, 17));
}

TEST(Shrinking, StopsWhenItsTriesAreUsedUp) {
    std::size_t calls = 0;
    const auto fails = [&calls](const Choices&) {
        ++calls;
        return false;
    };
    static_cast<void>(shrunk(Choices(100, 100), 0, 3, fails));
    EXPECT_EQ(calls, 3U);
}

}  // namespace
}  // namespace vorthmere::update::simulation
