#include "publisher/durable_files.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>

#include "tests/support/temporary_folder.h"
#include "tests/unit/publisher/system_faults.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class DurableFilesTest : public ::testing::Test {
protected:
    std::string refusalOfLock() {
        Descriptor lock;
        std::string error;
        EXPECT_FALSE(lockFolder(folder.path(), lock, error));
        EXPECT_FALSE(lock);
        return error;
    }

    update::testing::TemporaryFolder folder;
};

TEST_F(DurableFilesTest, OnlyALockThatSomebodyHoldsIsAnotherPublisher) {
    Descriptor lock;
    std::string error;
    ASSERT_TRUE(lockFolder(folder.path(), lock, error)) << error;
    EXPECT_THAT(refusalOfLock(), StartsWith("Another kvn-release is writing to "));
    lock = Descriptor();
    const FailingLocks none(ENOLCK);
    EXPECT_THAT(refusalOfLock(), EndsWith("cannot be locked: No locks available."));
}

TEST_F(DurableFilesTest, NewFoldersInheritTheGroupAndOldOnesKeepTheirPermissions) {
    constexpr fs::perms own = fs::perms::owner_all | fs::perms::set_gid;
    fs::permissions(folder.path(), own);
    std::string error;
    std::vector<fs::path> made;
    ASSERT_TRUE(createFolders(folder / "served/downloads/", made, error)) << error;
    EXPECT_THAT(made, ::testing::ElementsAre(folder / "served", folder / "served/downloads"));
    constexpr auto everybodys = static_cast<fs::perms>(0755) | fs::perms::set_gid;
    EXPECT_EQ(fs::status(folder / "served").permissions(), everybodys);
    EXPECT_EQ(fs::status(folder / "served/downloads").permissions(), everybodys);
    EXPECT_EQ(fs::status(folder.path()).permissions(), own);
}

TEST_F(DurableFilesTest, NewFolderIsOnTheDiskInTheOneAboveIt) {
    const SyncedFolders synced;
    std::vector<fs::path> made;
    std::string error;
    ASSERT_TRUE(createFolders(folder / "served/downloads", made, error)) << error;
    EXPECT_TRUE(SyncedFolders::holds(folder.path()));
    EXPECT_TRUE(SyncedFolders::holds(folder / "served"));
}

TEST_F(DurableFilesTest, LinkThatLeadsNowhereIsNoFolder) {
    fs::create_directory_symlink(folder / "nowhere", folder / "link");
    std::vector<fs::path> made;
    std::string error;
    EXPECT_FALSE(createFolders(folder / "link", made, error));
    EXPECT_THAT(made, ::testing::IsEmpty());
}

TEST_F(DurableFilesTest, FolderBelowAFileCannotBeCreated) {
    update::testing::writeFile(folder / "file", "x");
    std::string error;
    std::vector<fs::path> made;
    EXPECT_FALSE(createFolders(folder / "file/downloads", made, error));
    EXPECT_THAT(error, HasSubstr("file\" cannot be created: File exists."));
}

}  // namespace
}  // namespace vorthmere::publish::testing
