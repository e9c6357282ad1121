#include "tests/simulation/explorer/documented_failures.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace vorthmere::update::simulation {
namespace {

constexpr std::string_view kDocument = R"(# When an update fails

| Code | Sentence | What happened | What the player can do |
|---|---|---|---|
| 0 | | Installed. | Play. |
| 15 | a sentence on [the network](#the-network) | No package. | Try later. |
| 18 | One, SHA-256. / Two. / Three. | | |
| 21 | One, SHA-256. / Two. | | |
| 27 | none | | |
| 27 | Four. | | |
| 28 | Five (error N). | | |
| 28 | the same, followed by " Six." | | |

## The network

| Sentence | Meaning |
|---|---|
| The host returned HTTP N. | |
)";

TEST(DocumentedFailures, HasTheSentencesOfEachCode) {
    const DocumentedFailures documented(kDocument);
    EXPECT_TRUE(documented.contains(0, ""));
    EXPECT_TRUE(documented.contains(15, "The host returned HTTP 404."));
    EXPECT_TRUE(documented.contains(18, "One, SHA-256."));
    EXPECT_TRUE(documented.contains(21, "Two."));
    EXPECT_TRUE(documented.contains(27, ""));
    EXPECT_TRUE(documented.contains(27, "Four."));
    EXPECT_TRUE(documented.contains(28, "Five (error 193). Six."));
}

TEST(DocumentedFailures, HasNoOtherPair) {
    const DocumentedFailures documented(kDocument);
    EXPECT_FALSE(documented.contains(0, "Four."));
    EXPECT_FALSE(documented.contains(18, "One, SHA-255."));
    EXPECT_FALSE(documented.contains(18, "One, SHA-256. "));
    EXPECT_FALSE(documented.contains(21, "Three."));
    EXPECT_FALSE(documented.contains(28, "Five (error )."));
    EXPECT_FALSE(documented.contains(29, ""));
}

TEST(DocumentedFailures, RefusesATableThatItDoesNotUnderstand) {
    EXPECT_THROW(DocumentedFailures("# When an update fails\n\n| Code | S |\n|---|---|\n| 18 | see there |\n"),
                 std::runtime_error);
    EXPECT_THROW(DocumentedFailures("nothing"), std::runtime_error);
}

}  // namespace
}  // namespace vorthmere::update::simulation
