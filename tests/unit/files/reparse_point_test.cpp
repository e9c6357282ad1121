#include "files/reparse_point.h"

#include <gtest/gtest.h>

#include "tests/support/folder_link.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::LinkedFolder;
using testing::TemporaryFolder;
using testing::writeFile;

class ReparsePointTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    TemporaryFolder outside;
};

TEST_F(ReparsePointTest, OnlyALinkIsOne) {
    writeFile(folder / L"file", "");
    const LinkedFolder linked(folder / L"link", outside / L"target");
    EXPECT_TRUE(isReparsePoint(folder / L"link"));
    EXPECT_FALSE(isReparsePoint(folder / L"file"));
    EXPECT_FALSE(isReparsePoint(folder.path()));
    EXPECT_FALSE(isReparsePoint(folder / L"missing"));
    EXPECT_FALSE(isReparsePoint(folder / L"link" / L"precious.txt"));
}

TEST_F(ReparsePointTest, PlainMissingAndEmptyPathsPass) {
    writeFile(folder / L"data" / L"file", "");
    EXPECT_TRUE(isFreeOfReparsePoints(folder.path(), ""));
    EXPECT_TRUE(isFreeOfReparsePoints(folder.path(), "data/file"));
    EXPECT_TRUE(isFreeOfReparsePoints(folder.path(), "missing"));
    EXPECT_TRUE(isFreeOfReparsePoints(folder.path(), "missing/folders/file"));
}

TEST_F(ReparsePointTest, ALinkAnywhereAlongThePathFails) {
    writeFile(folder / L"data" / L"file", "");
    const LinkedFolder top(folder / L"top", outside / L"target");
    const LinkedFolder inner(folder / L"data" / L"inner", outside / L"target");
    EXPECT_FALSE(isFreeOfReparsePoints(folder.path(), "top"));
    EXPECT_FALSE(isFreeOfReparsePoints(folder.path(), "top/precious.txt"));
    EXPECT_FALSE(isFreeOfReparsePoints(folder.path(), "top/missing"));
    EXPECT_FALSE(isFreeOfReparsePoints(folder.path(), "data/inner"));
    EXPECT_FALSE(isFreeOfReparsePoints(folder.path(), "data/inner/missing/deeper"));
    EXPECT_TRUE(isFreeOfReparsePoints(folder.path(), "data/file"));
}

TEST_F(ReparsePointTest, TheRootFolderItselfIsNotTested) {
    const LinkedFolder root(folder / L"root", outside / L"target");
    EXPECT_TRUE(isFreeOfReparsePoints(folder / L"root", "precious.txt"));
    EXPECT_TRUE(isFreeOfReparsePoints(folder / L"root", ""));
}

}  // namespace
}  // namespace vorthmere::update
