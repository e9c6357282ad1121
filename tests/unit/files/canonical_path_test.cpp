#include "files/canonical_path.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::TemporaryFolder;

// The other tests are in tests/contract, which has no current folder.
TEST(CanonicalPath, AbsolutePathIsRelativeToTheCurrentFolderAndFoldsDots) {
    const TemporaryFolder folder;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(absolutePath(L"game"), folder / L"game");
    EXPECT_EQ(absolutePath(L"a\\..\\.\\game"), folder / L"game");
    EXPECT_EQ(absolutePath(L"a/game"), folder / L"a" / L"game");
    std::filesystem::current_path(before);
}

}  // namespace
}  // namespace vorthmere::update
