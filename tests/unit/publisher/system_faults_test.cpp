// System calls that fail.

#include <gmock/gmock.h>

#include <cerrno>

#include "publisher/durable_files.h"
#include "tests/unit/publisher/publishing.h"
#include "tests/unit/publisher/system_faults.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;

class SystemFaultsTest : public PublishingTest {};

TEST_F(SystemFaultsTest, FolderThatCannotBeLockedIsNoOtherPublisher) {
    const FailingLocks none(ENOLCK);
    Descriptor lock;
    std::string error;
    EXPECT_FALSE(lockFolder(folder.path(), lock, error));
    EXPECT_FALSE(lock);
    EXPECT_THAT(error, EndsWith("cannot be locked: No locks available."));
}

TEST_F(SystemFaultsTest, ChannelThatCannotBeListedDoesNotTellItsNumbers) {
    publish(42);
    const FailingListing listing(channel, EIO);
    EXPECT_EQ(refusalOf(43), "The channel cannot be listed: Input/output error.");
}

TEST_F(SystemFaultsTest, NewFolderIsOnTheDiskInTheOneAboveIt) {
    const SyncedFolders folders;
    std::vector<fs::path> made;
    std::string error;
    ASSERT_TRUE(createFolders(folder / "served/downloads", made, error)) << error;
    EXPECT_TRUE(SyncedFolders::holds(folder.path()));
    EXPECT_TRUE(SyncedFolders::holds(folder / "served"));
}

}  // namespace
}  // namespace vorthmere::publish::testing
