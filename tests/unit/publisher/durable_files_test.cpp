#include "publisher/durable_files.h"

#include <gmock/gmock.h>

#include "tests/support/temporary_folder.h"

namespace vorthmere::publish::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
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

TEST_F(DurableFilesTest, LockThatSomebodyHoldsIsAnotherPublisher) {
    Descriptor lock;
    std::string error;
    ASSERT_TRUE(lockFolder(folder.path(), lock, error)) << error;
    EXPECT_THAT(refusalOfLock(), StartsWith("Another kvn-release is writing to "));
}

TEST_F(DurableFilesTest, FolderBelowAFileCannotBeCreated) {
    update::testing::writeFile(folder / "file", "x");
    std::string error;
    std::vector<fs::path> made;
    EXPECT_FALSE(createFolders(folder / "file/downloads", made, error));
    EXPECT_THAT(error, AllOf(HasSubstr("file\" cannot be created: "), HasSubstr("exist")));
}

}  // namespace
}  // namespace vorthmere::publish::testing
