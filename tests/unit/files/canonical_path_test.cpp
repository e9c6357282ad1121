#include "files/canonical_path.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::TemporaryFolder;

// The rest is in tests/contract, which has no current folder of its own.
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
