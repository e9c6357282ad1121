#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace vorthmere::update::testing {
namespace {

namespace fs = std::filesystem;

TEST(TemporaryFolderFixture, IsRemovedWithItsContent) {
    fs::path path;
    {
        const TemporaryFolder folder;
        path = folder.path();
        EXPECT_TRUE(fs::is_empty(path));
        writeFile(folder / "a" / "b" / "file", "content");
        writeFile(folder / "read only", "content");
        fs::permissions(folder / "read only", fs::perms::owner_write, fs::perm_options::remove);
        EXPECT_EQ(readFile(folder / "a" / "b" / "file"), "content");
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(TemporaryFolderFixture, IsAnotherOneEachTime) {
    const TemporaryFolder first;
    const TemporaryFolder second;
    EXPECT_NE(first.path(), second.path());
}

#ifndef _WIN32
TEST(TemporaryFolderFixture, LeavesAloneWhatItsLinksLeadTo) {
    const TemporaryFolder outside;
    writeFile(outside / "file", "content");
    fs::path path;
    {
        const TemporaryFolder folder;
        path = folder.path();
        fs::create_directory_symlink(outside.path(), folder / "link");
        fs::create_symlink(outside / "file", folder / "file link");
    }
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(readFile(outside / "file"), "content");
}
#endif

}  // namespace
}  // namespace vorthmere::update::testing
