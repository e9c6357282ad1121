#include "files/canonical_path.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

class CanonicalPathTest : public CoreTest {
protected:
    std::string canonical(const std::string& path) {
        failure = {23, std::system_category()};
        return weaklyCanonicalPath(path, failure).string();
    }

    std::error_code failure;
};

// What tests/contract cannot show: which parents are asked, as each may cost a network's patience.

TEST_F(CanonicalPathTest, ClimbsNoHigherThanAShare) {
    EXPECT_EQ(canonical("//server/share/a/b"), "//server/share/a/b");
    EXPECT_FALSE(failure);
    EXPECT_THAT(callsOf(Operation::openForItsName),
                ElementsAre("//server/share/a/b", "//server/share/a", "//server/share"));
}

TEST_F(CanonicalPathTest, TheFirstFolderThatCannotBeOpenedForAnotherReasonEndsIt) {
    harm(Operation::openForItsName, {.error = 5}, 1);
    EXPECT_EQ(canonical("C:/Test/none/at all"), "");
    EXPECT_EQ(failure.value(), 5);
    harm(Operation::finalPath, {.error = 3});
    EXPECT_EQ(canonical("C:/Test/none"), "");
    EXPECT_EQ(failure.value(), 3);
    harm(Operation::fullPath, {.error = 206});
    EXPECT_EQ(canonical("C:/Test/none"), "");
    EXPECT_EQ(failure.value(), 206);
}

}  // namespace
}  // namespace vorthmere::update::simulation
