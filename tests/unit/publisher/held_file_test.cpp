// Files that another program holds open, which Windows then does not let anyone read or replace.

#include "tests/support/held_file.h"

#include <gmock/gmock.h>

#include "tests/unit/publisher/publishing.h"

namespace vorthmere::publish::testing {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using update::testing::HeldFile;

class HeldFileTest : public PublishingTest {};

TEST_F(HeldFileTest, FileThatMayNotBeReadHasTheReason) {
    const HeldFile held(game / "data/level one.pak");
    EXPECT_THAT(refusalOf(42), AllOf(HasSubstr("level one.pak\" cannot be read: "), EndsWith(".")));
    EXPECT_FALSE(std::filesystem::exists(channel / "KVN-alpha.manifest"));
}

TEST_F(HeldFileTest, ManifestThatIsBeingReadStaysUntilTheNextRun) {
    publish(41);
    {
        const HeldFile held(channel / "KVN-alpha.manifest", FILE_SHARE_READ | FILE_SHARE_WRITE);
        EXPECT_THAT(refusalOf(42), HasSubstr("KVN-alpha.manifest\" cannot be replaced: "));
    }
    EXPECT_EQ(manifest().release, 41u);
    publish(42);
    EXPECT_EQ(manifest().release, 42u);
}

}  // namespace
}  // namespace vorthmere::publish::testing
